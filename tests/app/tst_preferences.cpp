// The preferences: PreferencesController's setters and getters against a configuration file in a
// temporary folder and the notification center, and the window's controller over a fake view for
// what the Qt window (tst_preferences_window) does not show: the order in which a recorded hot key
// is saved, announced and the hot keys resume, recording ended by leaving the window or by Clear,
// a change that reaches a disabled box, and the macOS words.

#include "app/preferences/preferences_controller.h"
#include "app/preferences/preferences_window_controller.h"
#include "platform_fakes.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

Q_DECLARE_METATYPE(paneforge::HotkeySlotId)

namespace {

const QString kConfigChanged = QStringLiteral("PaneforgeConfigChanged");

// Only the three required keys: every optional setting absent.
PaneforgeConfig requiredOnly() {
    ConfigSnapshot snapshot;
    snapshot.defaultLayout = GridDefinition(QStringLiteral("d"), QStringLiteral("D"), {}, {});
    snapshot.cellMarginPoints = 4;
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
        : controller(PreferencesWindowServices{
              settings.preferences, views, keyboard, keyboard, logins, nullptr,
              [this](bool on) {
                  settings.journal
                      << QString::fromLatin1(on ? "hotkeys paused" : "hotkeys resumed");
              },
              PlatformWords(style)}) {
        views.journal = [this](const QString& line) { log << line; };
    }
    PreferencesFormEvents& events() { return views.preferences->events; }
    const PreferencesForm& shown() { return *views.preferences->form; }

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

    void hotkeySettersPostTheirOwnNotificationFirst_data() {
        QTest::addColumn<HotkeySlotId>("slot");
        for (const HotkeySlot& slot : hotkeySlots()) {
            QTest::addRow("id %u", slot.id()) << slot.slot;
        }
    }
    void hotkeySettersPostTheirOwnNotificationFirst() {
        QFETCH(HotkeySlotId, slot);
        const HotkeySlot& row = hotkeySlot(slot);
        Settings s;
        const HotkeyDefinition hotkey{14, modifier_bits::kCommand | modifier_bits::kShift};
        s.preferences.setHotkey(slot, hotkey);
        QCOMPARE(s.journal, (QStringList{notificationName(row.changed), kConfigChanged}));
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

    void everyOtherSetterPostsOnlyConfigChanged() {
        Settings s;
        PreferencesController& p = s.preferences;
        // All boxes off is saved as 0, not left out.
        const std::vector<std::function<void()>> setters{
            [&] { p.setCellMarginPoints(3); },
            [&] { p.setSingleSnapModifiers(ModifierDefinition{0}); },
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
                                 .withSingleSnapModifiers(ModifierDefinition{0})
                                 .withMultiSnapModifiers(ModifierDefinition{4096 | 512})
                                 .withLaunchAtLogin(true)
                                 .withHideMenuBarIcon(true)
                                 .withRestoreWindowSizeOnUnsnap(false)
                                 .withHasCompletedQuickStart(true));
        QVERIFY(p.getLaunchAtLogin() && p.getHideMenuBarIcon() &&
                !p.getRestoreWindowSizeOnUnsnap());
        QCOMPARE(p.getMultiSnapModifiers(), ModifierDefinition{4096 | 512});
        // Both rows may hold the same combination.
        p.setMultiSnapModifiers(ModifierDefinition{0});
        QCOMPARE(p.getMultiSnapModifiers(), ModifierDefinition{0});
    }

    void anUnreadableFileBecomesDefaultsPlusTheChange() {
        Settings s;
        s.writeFile("{ not json");
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, s.config());
        // Getters read the defaults meanwhile.
        QCOMPARE(s.preferences.getCellMarginPoints(), 8.0);
        QVERIFY(s.preferences.getRestoreWindowSizeOnUnsnap());

        s.preferences.setHotkey(HotkeySlotId::OpenEditor, HotkeyDefinition{14, 256});
        QCOMPARE(s.config(),
                 PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
        QCOMPARE(s.journal,
                 (QStringList{QStringLiteral("PaneforgeHotkeyChanged"), kConfigChanged}));
    }

    void aFailedSaveStillAnnouncesTheChange() {
        Settings s;
        // The configuration folder's place is taken by a file: nothing can be saved.
        QFile blocker(s.directory.path() + QStringLiteral("/Paneforge"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        s.preferences.setLaunchAtLogin(true);
        QCOMPARE(s.journal, QStringList{kConfigChanged});
        QVERIFY(!s.preferences.getLaunchAtLogin());
    }

    void gettersFallBackToTheDefaults() {
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

        // Present, even as 0, the file's value wins.
        s.store.saveConfig(
            requiredOnly().withRestoreWindowSizeOnUnsnap(false).withSingleSnapModifiers(
                ModifierDefinition{0}));
        QCOMPARE(p.getRestoreWindowSizeOnUnsnap(), false);
        QCOMPARE(p.getSingleSnapModifiers(), ModifierDefinition{0});
    }

    // PreferencesWindowController

    void marginTexts_data() {
        QTest::addColumn<double>("points");
        QTest::addColumn<QString>("text");
        QTest::newRow("12.7") << 12.7 << "12 pt";
        QTest::newRow("just under one") << 0.99 << "0 pt";
        QTest::newRow("the slider's end") << 40.0 << "40 pt";
        QTest::newRow("negative, toward zero") << -0.5 << "0 pt";
        QTest::newRow("negative") << -3.9 << "-3 pt";
        QTest::newRow("far beyond 64 bits") << 1e20 << "100000000000000000000 pt";
    }
    void marginTexts() {
        QFETCH(double, points);
        QFETCH(QString, text);
        QCOMPARE(PreferencesWindowController::marginText(points), text);
    }

    // The Qt window test reads the Linux words; these are the words it is given.
    void formShowsTheFileInTheGivenWords() {
        Window w(WordStyle::MacOS);
        w.settings.store.saveConfig(
            PaneforgeConfig::makeDefault().withMoveToNextDisplayHotkey(HotkeyDefinition{46, 6144}));
        QVERIFY(!w.views.preferences); // made on first use
        w.controller.show();
        QCOMPARE(w.log, QStringList{"preferences.show"});
        QStringList rows;
        for (const PreferencesHotkeyRow& row : w.shown().hotkeys) {
            rows << row.title + QStringLiteral(": ") + row.value;
        }
        QCOMPARE(rows, (QStringList{"Open Zone Editor: Not set", "Open Preferences: Not set",
                                    "Open Layout Selector: Not set",
                                    QString::fromUtf8("Move to Next Display: ⌥ + ⌃ + Key 46"),
                                    "Next Layout: Not set", "Previous Layout: Not set"}));
        QStringList boxes;
        for (const ModifierBox& box : w.shown().modifierBoxes) {
            boxes << box.title;
        }
        QCOMPARE(boxes, (QStringList{"Command", "Shift", "Option", "Control"}));
        QCOMPARE(w.shown().hideMenuBarIconTitle, QStringLiteral("Hide menu bar icon"));
    }

    void aRecordedHotkeyIsAnnouncedBeforeTheHotkeysResume() {
        Window w;
        w.controller.show();
        // Recording one row and then another records only the second.
        w.events().recordHotkeyClicked(HotkeySlotId::NextLayout);
        w.events().recordHotkeyClicked(HotkeySlotId::MoveToNextDisplay);
        QCOMPARE(w.controller.recordingSlot(), std::optional(HotkeySlotId::MoveToNextDisplay));
        QVERIFY(w.views.keyMonitor.press(45, 6144)); // swallowed
        QCOMPARE(w.settings.config(), PaneforgeConfig::makeDefault().withMoveToNextDisplayHotkey(
                                          HotkeyDefinition{45, 6144}));
        QCOMPARE(w.settings.journal,
                 (QStringList{"hotkeys paused", "PaneforgeMoveWindowHotkeyChanged", kConfigChanged,
                              "hotkeys resumed"}));
        QCOMPARE(w.controller.recordingSlot(), std::nullopt);
        QVERIFY(!w.shown().hotkeys.at(3).recording);
        // Recording is over: the next press goes to the window.
        QVERIFY(!w.views.keyMonitor.press(46, 6144));
    }

    void leavingTheWindowOrClearingEndsRecording() {
        Window w;
        w.settings.store.saveConfig(
            PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
        w.controller.show();
        w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
        w.events().windowDeactivated();
        QCOMPARE(w.controller.recordingSlot(), std::nullopt);
        QVERIFY(!w.views.keyMonitor.press(14, 256));

        // Clear while recording: the recording ends first, nothing is recorded.
        w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
        w.events().clearHotkeyClicked(HotkeySlotId::OpenEditor);
        QVERIFY(!w.views.keyMonitor.press(14, 256));
        QCOMPARE(w.settings.config(), PaneforgeConfig::makeDefault());
        QCOMPARE(w.settings.journal,
                 (QStringList{"hotkeys paused", "hotkeys resumed", "hotkeys paused",
                              "PaneforgeHotkeyChanged", kConfigChanged, "hotkeys resumed"}));
    }

    void hideIconNeedsAWayBack() {
        Window w;
        w.controller.show();
        QVERIFY(!w.shown().hideMenuBarIconEnabled);
        // A change that reaches the disabled box changes nothing.
        w.events().hideMenuBarIconChanged(true);
        QCOMPARE(w.settings.config().hideMenuBarIcon(), std::optional(false));

        // With a hot key back to the preferences it hides; hidden, it can always be shown again.
        w.settings.preferences.setHotkey(HotkeySlotId::OpenPreferences, HotkeyDefinition{35, 0});
        w.events().hideMenuBarIconChanged(true);
        w.events().clearHotkeyClicked(HotkeySlotId::OpenPreferences);
        QVERIFY(w.shown().hideMenuBarIcon && w.shown().hideMenuBarIconEnabled);
        w.events().hideMenuBarIconChanged(false);
        QCOMPARE(w.settings.config().hideMenuBarIcon(), std::optional(false));
        QVERIFY(!w.shown().hideMenuBarIconEnabled);
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "tst_preferences.moc"
