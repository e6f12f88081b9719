// The preferences: PreferencesController's setters and getters against a configuration
// file in a temporary folder and the notification center, and the window's behaviour
// (PreferencesWindowController) over a fake view, a fake key monitor and fake login items.

#include "app/preferences/preferences_controller.h"
#include "app/preferences/preferences_window_controller.h"
#include "platform_fakes.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

Q_DECLARE_METATYPE(paneforge::HotkeySlotId)
Q_DECLARE_METATYPE(paneforge::WordStyle)

namespace {

const QString kConfigChanged = QStringLiteral("PaneforgeConfigChanged");

// Only the three required keys: every optional setting absent.
PaneforgeConfig requiredOnly(double margin = 4) {
    ConfigSnapshot snapshot;
    snapshot.defaultLayout = GridDefinition(QStringLiteral("d"), QStringLiteral("D"), {}, {});
    snapshot.cellMarginPoints = margin;
    return PaneforgeConfig(snapshot);
}

// A configuration folder, its store, and every notification posted, by name, into `journal`
// (which the window controller's recording switch writes into too).
struct Settings {
    Settings() {
        for (int n = 0; n <= int(Notification::ListenEventGrantCleared); ++n) {
            const auto notification = Notification(n);
            observations.push_back(notifications.observe(
                notification, [this, notification] { journal << notificationName(notification); }));
        }
    }
    QString path() const { return directory.path() + QStringLiteral("/Paneforge/config.json"); }
    QByteArray fileText() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeFile(const QByteArray& bytes) const {
        store.getConfigPath(); // makes the folder
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    PaneforgeConfig config() const { return store.loadConfig(); }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    NotificationCenter notifications;
    std::vector<NotificationCenter::ObservationToken> observations;
    QStringList journal;
    PreferencesController preferences{store, notifications};
};

// The window controller over fakes, in the given platform's words.
struct Window {
    explicit Window(WordStyle style = WordStyle::Linux)
        : controller(PreferencesWindowServices{settings.preferences, views, keyboard, keyboard,
                                               logins, [this](const QString& line) { log << line; },
                                               [this](bool recording) {
                                                   settings.journal
                                                       << (recording
                                                               ? QStringLiteral("hotkeys paused")
                                                               : QStringLiteral("hotkeys resumed"));
                                               },
                                               PlatformWords(style)}) {
        views.journal = [this](const QString& line) { log << line; };
    }
    PreferencesFormEvents& events() { return views.preferences->events; }
    const PreferencesForm& shown() { return *views.preferences->form; }
    const PreferencesHotkeyRow& row(HotkeySlotId slot) {
        return shown().hotkeys.at(std::size_t(slot) - 1);
    }

    Settings settings;
    fakes::Views views;
    fakes::NoKeyboardLayout keyboard;
    fakes::LoginItems logins;
    QStringList log;
    PreferencesWindowController controller;
};

} // namespace

class PreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // PreferencesController
    void allBoxesOffSaveZero();
    void hotkeySettersPostTheirOwnNotificationFirst_data();
    void hotkeySettersPostTheirOwnNotificationFirst();
    void everyOtherSetterPostsOnlyConfigChanged();
    void anUnreadableFileBecomesDefaultsPlusTheChange();
    void aFailedSaveStillAnnouncesTheChange();
    void gettersFallBackToTheDefaults();

    // PreferencesWindowController
    void marginTexts_data();
    void marginTexts();
    void formShowsTheFileInThePlatformsWords_data();
    void formShowsTheFileInThePlatformsWords();
    void recordingStoresTheCombination();
    void escapeCancelsRecording();
    void clearRemovesTheHotkeyAndEndsRecording();
    void closingOrLeavingTheWindowEndsRecording();
    void hideIconNeedsAWayBack();
};

void PreferencesTest::allBoxesOffSaveZero() {
    Settings s;
    s.preferences.setSingleSnapModifiers(ModifierDefinition{0});
    QCOMPARE(s.config().singleSnapModifiers(), std::optional(ModifierDefinition{0}));
    // Present as 0, not absent: the getter gives 0 rather than the default.
    QCOMPARE(s.preferences.getSingleSnapModifiers(), ModifierDefinition{0});
    // Both rows may hold the same combination.
    s.preferences.setMultiSnapModifiers(ModifierDefinition{0});
    QCOMPARE(s.preferences.getMultiSnapModifiers(), ModifierDefinition{0});
}

void PreferencesTest::hotkeySettersPostTheirOwnNotificationFirst_data() {
    QTest::addColumn<HotkeySlotId>("slot");
    for (const HotkeySlot& slot : hotkeySlots()) {
        QTest::addRow("id %u", slot.id()) << slot.slot;
    }
}

void PreferencesTest::hotkeySettersPostTheirOwnNotificationFirst() {
    QFETCH(HotkeySlotId, slot);
    const HotkeySlot& row = hotkeySlot(slot);
    Settings s;
    const HotkeyDefinition hotkey{14, modifier_bits::kCommand | modifier_bits::kShift};
    s.preferences.setHotkey(slot, hotkey);
    QCOMPARE(s.journal, (QStringList{notificationName(row.changed), kConfigChanged}));
    QCOMPARE(row.read(s.config()), std::optional(hotkey));
    QCOMPARE(s.preferences.getHotkey(slot), std::optional(hotkey));
    // Every other hot key untouched.
    for (const HotkeySlot& other : hotkeySlots()) {
        QCOMPARE(other.read(s.config()).has_value(), other.slot == slot);
    }

    // None clears it: the key leaves the file.
    s.journal.clear();
    s.preferences.setHotkey(slot, std::nullopt);
    QCOMPARE(s.journal, (QStringList{notificationName(row.changed), kConfigChanged}));
    QCOMPARE(s.preferences.getHotkey(slot), std::nullopt);
    QVERIFY(!s.fileText().contains("Hotkey"));
}

void PreferencesTest::everyOtherSetterPostsOnlyConfigChanged() {
    Settings s;
    PreferencesController& p = s.preferences;
    const std::vector<std::function<void()>> setters{
        [&] { p.setCellMarginPoints(3); },
        [&] { p.setSingleSnapModifiers(ModifierDefinition{4096}); },
        [&] { p.setMultiSnapModifiers(ModifierDefinition{4096 | 512}); },
        [&] { p.setLaunchAtLogin(true); },
        [&] { p.setHideMenuBarIcon(true); },
        [&] { p.setRestoreWindowSizeOnUnsnap(false); },
        [&] { p.setHasCompletedQuickStart(true); }};
    for (const auto& set : setters) {
        set();
    }
    QCOMPARE(s.journal, QStringList(qsizetype(setters.size()), kConfigChanged));
    QCOMPARE(s.config(), PaneforgeConfig::makeDefault()
                             .withCellMarginPoints(3)
                             .withSingleSnapModifiers(ModifierDefinition{4096})
                             .withMultiSnapModifiers(ModifierDefinition{4096 | 512})
                             .withLaunchAtLogin(true)
                             .withHideMenuBarIcon(true)
                             .withRestoreWindowSizeOnUnsnap(false)
                             .withHasCompletedQuickStart(true));
    QVERIFY(p.getLaunchAtLogin() && p.getHideMenuBarIcon() && !p.getRestoreWindowSizeOnUnsnap());
}

void PreferencesTest::anUnreadableFileBecomesDefaultsPlusTheChange() {
    Settings s;
    s.writeFile("{ not json");
    QVERIFY_THROWS_EXCEPTION(ConfigStoreError, s.config());
    // Getters read the defaults meanwhile.
    QCOMPARE(s.preferences.getCellMarginPoints(), 8.0);
    QVERIFY(s.preferences.getRestoreWindowSizeOnUnsnap());

    s.preferences.setHotkey(HotkeySlotId::OpenEditor, HotkeyDefinition{14, 256});
    QCOMPARE(s.config(),
             PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
    QCOMPARE(s.journal, (QStringList{QStringLiteral("PaneforgeHotkeyChanged"), kConfigChanged}));
}

void PreferencesTest::aFailedSaveStillAnnouncesTheChange() {
    Settings s;
    // The configuration folder's place is taken by a file: nothing can be saved.
    QFile blocker(s.directory.path() + QStringLiteral("/Paneforge"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    s.preferences.setLaunchAtLogin(true);
    QCOMPARE(s.journal, QStringList{kConfigChanged});
    QVERIFY(!s.preferences.getLaunchAtLogin());
}

void PreferencesTest::gettersFallBackToTheDefaults() {
    Settings s;
    s.store.saveConfig(requiredOnly());
    const PreferencesController& p = s.preferences;
    QCOMPARE(p.getSingleSnapModifiers(), ModifierDefinition{256});
    QCOMPARE(p.getMultiSnapModifiers(), ModifierDefinition{768});
    QCOMPARE(p.getLaunchAtLogin(), false);
    QCOMPARE(p.getHideMenuBarIcon(), false);
    QCOMPARE(p.getRestoreWindowSizeOnUnsnap(), true);
    QCOMPARE(p.getHotkey(HotkeySlotId::NextLayout), std::nullopt);
    QCOMPARE(p.getCellMarginPoints(), 4.0);
    // Reading changes nothing.
    QCOMPARE(s.config(), requiredOnly());

    s.store.saveConfig(requiredOnly().withRestoreWindowSizeOnUnsnap(false).withSingleSnapModifiers(
        ModifierDefinition{4096}));
    QCOMPARE(p.getRestoreWindowSizeOnUnsnap(), false);
    QCOMPARE(p.getSingleSnapModifiers(), ModifierDefinition{4096});
}

void PreferencesTest::marginTexts_data() {
    QTest::addColumn<double>("points");
    QTest::addColumn<QString>("text");
    QTest::newRow("12.7") << 12.7 << "12 pt";
    QTest::newRow("just under one") << 0.99 << "0 pt";
    QTest::newRow("the default") << 8.0 << "8 pt";
    QTest::newRow("the slider's end") << 40.0 << "40 pt";
    QTest::newRow("negative, toward zero") << -0.5 << "0 pt";
    QTest::newRow("negative") << -3.9 << "-3 pt";
    QTest::newRow("far beyond 64 bits") << 1e20 << "100000000000000000000 pt";
}

void PreferencesTest::marginTexts() {
    QFETCH(double, points);
    QFETCH(QString, text);
    QCOMPARE(PreferencesWindowController::marginText(points), text);
}

void PreferencesTest::formShowsTheFileInThePlatformsWords_data() {
    QTest::addColumn<WordStyle>("style");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<QString>("moveHotkey");
    QTest::addColumn<QString>("hideTitle");
    QTest::newRow("macOS") << WordStyle::MacOS
                           << QStringList{"Command", "Shift", "Option", "Control"}
                           << QString::fromUtf8("⌥ + ⌃ + Key 46") << "Hide menu bar icon";
    QTest::newRow("Linux") << WordStyle::Linux << QStringList{"Super", "Shift", "Alt", "Ctrl"}
                           << "Ctrl + Alt + Key 46"
                           << "Hide tray icon";
}

void PreferencesTest::formShowsTheFileInThePlatformsWords() {
    QFETCH(WordStyle, style);
    QFETCH(QStringList, boxes);
    QFETCH(QString, moveHotkey);
    QFETCH(QString, hideTitle);
    Window w(style);
    w.settings.store.saveConfig(PaneforgeConfig::makeDefault()
                                    .withCellMarginPoints(12.7)
                                    .withMoveToNextDisplayHotkey(HotkeyDefinition{46, 6144})
                                    .withMultiSnapModifiers(ModifierDefinition{4096 | 2048}));
    QVERIFY(!w.views.preferences); // made on first use
    w.controller.show();
    QVERIFY(w.controller.isVisible());
    QCOMPARE(w.log, QStringList{"preferences.show"});

    const PreferencesForm& form = w.shown();
    QCOMPARE(form.cellMarginPoints, 12.7);
    QCOMPARE(form.cellMarginText, QStringLiteral("12 pt"));
    QStringList titles;
    QStringList values;
    for (const PreferencesHotkeyRow& row : form.hotkeys) {
        titles << row.title;
        values << row.value;
        QVERIFY(!row.recording);
    }
    QCOMPARE(titles, (QStringList{"Open Zone Editor", "Open Preferences", "Open Layout Selector",
                                  "Move to Next Display", "Next Layout", "Previous Layout"}));
    QCOMPARE(values,
             (QStringList{"Not set", "Not set", "Not set", moveHotkey, "Not set", "Not set"}));
    QStringList boxTitles;
    for (const ModifierBox& box : form.modifierBoxes) {
        boxTitles << box.title;
    }
    QCOMPARE(boxTitles, boxes);
    QCOMPARE(form.modifierBoxes[0].bit, modifier_bits::kCommand);
    QCOMPARE(form.singleSnapModifiers, 256u);
    QCOMPARE(form.multiSnapModifiers, 6144u);
    QCOMPARE(form.hideMenuBarIconTitle, hideTitle);
    QVERIFY(form.restoreWindowSizeOnUnsnap);
    QVERIFY(!form.launchAtLogin);
}

void PreferencesTest::recordingStoresTheCombination() {
    Window w;
    w.controller.show();
    w.events().recordHotkeyClicked(HotkeySlotId::MoveToNextDisplay);
    QCOMPARE(w.controller.recordingSlot(), std::optional(HotkeySlotId::MoveToNextDisplay));
    QVERIFY(w.row(HotkeySlotId::MoveToNextDisplay).recording);
    QCOMPARE(w.row(HotkeySlotId::MoveToNextDisplay).value,
             PreferencesWindowController::recordingPrompt());
    QCOMPARE(w.settings.journal, QStringList{"hotkeys paused"});

    // Ctrl+Alt+N, typed in the window: swallowed, saved, announced, then the hot keys return.
    QVERIFY(w.views.keyMonitor.press(45, 6144));
    QCOMPARE(w.settings.config().moveToNextDisplayHotkey(),
             std::optional(HotkeyDefinition{45, 6144}));
    QCOMPARE(w.settings.journal, (QStringList{"hotkeys paused", "PaneforgeMoveWindowHotkeyChanged",
                                              kConfigChanged, "hotkeys resumed"}));
    QCOMPARE(w.controller.recordingSlot(), std::nullopt);
    QVERIFY(!w.row(HotkeySlotId::MoveToNextDisplay).recording);
    QCOMPARE(w.row(HotkeySlotId::MoveToNextDisplay).value, QStringLiteral("Ctrl + Alt + Key 45"));
    QVERIFY(
        w.log.contains("PreferencesWindowController.recorded slot=4 keyCode=45 modifiers=6144"));
    // Recording is over: the next press goes to the window.
    QVERIFY(!w.views.keyMonitor.press(46, 6144));

    // Recording one row and then another records only the second.
    w.settings.journal.clear();
    w.events().recordHotkeyClicked(HotkeySlotId::NextLayout);
    w.events().recordHotkeyClicked(HotkeySlotId::PreviousLayout);
    QVERIFY(w.views.keyMonitor.press(0, 0)); // a bare key is a hot key too
    QCOMPARE(w.settings.config().nextLayoutHotkey(), std::nullopt);
    QCOMPARE(w.settings.config().previousLayoutHotkey(), std::optional(HotkeyDefinition{0, 0}));
    QCOMPARE(w.settings.journal,
             (QStringList{"hotkeys paused", "PaneforgePreviousLayoutHotkeyChanged", kConfigChanged,
                          "hotkeys resumed"}));
}

void PreferencesTest::escapeCancelsRecording() {
    Window w;
    w.settings.store.saveConfig(
        PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
    w.controller.show();
    w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
    QVERIFY(w.views.keyMonitor.press(53, 0));
    QCOMPARE(w.settings.config().openEditorHotkey(), std::optional(HotkeyDefinition{14, 256}));
    QCOMPARE(w.settings.journal, (QStringList{"hotkeys paused", "hotkeys resumed"}));
    QCOMPARE(w.row(HotkeySlotId::OpenEditor).value, QStringLiteral("Super + Key 14"));
    QVERIFY(w.log.contains("PreferencesWindowController.recording cancelled slot=1"));
}

void PreferencesTest::clearRemovesTheHotkeyAndEndsRecording() {
    Window w;
    w.settings.store.saveConfig(PaneforgeConfig::makeDefault()
                                    .withOpenEditorHotkey(HotkeyDefinition{14, 256})
                                    .withNextLayoutHotkey(HotkeyDefinition{124, 4096}));
    w.controller.show();
    w.events().clearHotkeyClicked(HotkeySlotId::NextLayout);
    QCOMPARE(w.settings.config().nextLayoutHotkey(), std::nullopt);
    QCOMPARE(w.row(HotkeySlotId::NextLayout).value, QStringLiteral("Not set"));
    QCOMPARE(w.settings.journal, (QStringList{"PaneforgeNextLayoutHotkeyChanged", kConfigChanged}));

    // Clearing while recording: the recording ends first, nothing is recorded.
    w.settings.journal.clear();
    w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
    w.events().clearHotkeyClicked(HotkeySlotId::OpenEditor);
    QCOMPARE(w.settings.journal, (QStringList{"hotkeys paused", "PaneforgeHotkeyChanged",
                                              kConfigChanged, "hotkeys resumed"}));
    QVERIFY(!w.views.keyMonitor.press(14, 256));
    QCOMPARE(w.settings.config().openEditorHotkey(), std::nullopt);
}

void PreferencesTest::closingOrLeavingTheWindowEndsRecording() {
    Window w;
    w.controller.show();
    w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
    w.events().windowDeactivated();
    QCOMPARE(w.controller.recordingSlot(), std::nullopt);
    QVERIFY(!w.views.keyMonitor.press(14, 256));
    QCOMPARE(w.settings.journal, (QStringList{"hotkeys paused", "hotkeys resumed"}));

    w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
    w.events().closeClicked();
    QVERIFY(!w.controller.isVisible());
    QVERIFY(!w.views.keyMonitor.press(14, 256));
    QCOMPARE(w.settings.journal, (QStringList{"hotkeys paused", "hotkeys resumed", "hotkeys paused",
                                              "hotkeys resumed"}));
    QCOMPARE(w.settings.config(), PaneforgeConfig::makeDefault());
}

void PreferencesTest::hideIconNeedsAWayBack() {
    Window w;
    w.controller.show();
    QVERIFY(!w.shown().hideMenuBarIconEnabled);
    QCOMPARE(w.shown().hideMenuBarIconInfo, PreferencesWindowController::hideMenuBarIconInfo());
    // A click that reaches a disabled box changes nothing.
    w.events().hideMenuBarIconChanged(true);
    QCOMPARE(w.settings.config().hideMenuBarIcon(), std::optional(false));
    QVERIFY(w.settings.journal.isEmpty());

    w.events().recordHotkeyClicked(HotkeySlotId::OpenPreferences);
    w.views.keyMonitor.press(35, 6144);
    QVERIFY(w.shown().hideMenuBarIconEnabled);
    QVERIFY(w.shown().hideMenuBarIconInfo.isEmpty());
    w.events().hideMenuBarIconChanged(true);
    QCOMPARE(w.settings.config().hideMenuBarIcon(), std::optional(true));

    // A hidden icon can always be shown again, hot key or not.
    w.events().clearHotkeyClicked(HotkeySlotId::OpenPreferences);
    QVERIFY(w.shown().hideMenuBarIcon && w.shown().hideMenuBarIconEnabled);
    w.events().hideMenuBarIconChanged(false);
    QCOMPARE(w.settings.config().hideMenuBarIcon(), std::optional(false));
    QVERIFY(!w.shown().hideMenuBarIconEnabled);
}

QTEST_GUILESS_MAIN(PreferencesTest)
#include "tst_preferences.moc"
