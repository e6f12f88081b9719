
#include "app/preferences/preferences_controller.h"
#include "app/preferences/preferences_window_controller.h"
#include "platform_fakes.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {

const QString kConfigChanged = QStringLiteral("PaneforgeConfigChanged");

// Every notification posted, by name, into `journal`, which the recording switch writes into too.
struct Settings {
    Settings() {
        for (int n = 0; n <= int(Notification::ListenEventGrantCleared); ++n) {
            const auto notification = Notification(n);
            observations.push_back(notifications.observe(
                notification, [this, notification] { journal << notificationName(notification); }));
        }
    }
    void writeFile(const QByteArray& bytes) const {
        QFile file(store.getConfigPath()); // makes the folder
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

struct Window {
    explicit Window(WordStyle style = WordStyle::Linux)
        : controller(PreferencesWindowServices{
              settings.preferences, views, keyboard, keyboard, logins, nullptr,
              [this](bool on) {
                  settings.journal
                      << QString::fromLatin1(on ? "hotkeys paused" : "hotkeys resumed");
              },
              PlatformWords(style)}) {}
    PreferencesFormEvents& events() { return views.preferences->events; }
    const PreferencesForm& shown() { return *views.preferences->form; }

    Settings settings;
    fakes::Views views;
    fakes::NoKeyboardLayout keyboard;
    fakes::LoginItems logins;
    PreferencesWindowController controller;
};

} // namespace

// The window's controls saving what they show, over the real view: tst_preferences_window.
class PreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anUnreadableFileBecomesDefaultsPlusTheChange() {
        Settings s;
        s.writeFile("{ not json");
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, s.config());
        QCOMPARE(s.preferences.getCellMarginPoints(),
                 8.0); // the defaults meanwhile
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

    void gettersFallBackToTheDefaultsOnlyWhenAbsent() {
        Settings s;
        ConfigSnapshot snapshot; // only the required keys
        snapshot.defaultLayout = GridDefinition(QStringLiteral("d"), QStringLiteral("D"), {}, {});
        s.store.saveConfig(PaneforgeConfig(snapshot));
        QCOMPARE(s.preferences.getMultiSnapModifiers(), ModifierDefinition{768});
        QCOMPARE(s.config(), PaneforgeConfig(snapshot)); // reading changes nothing
        s.store.saveConfig(PaneforgeConfig(snapshot).withMultiSnapModifiers(ModifierDefinition{0}));
        QCOMPARE(s.preferences.getMultiSnapModifiers(), ModifierDefinition{0});
    }

    // The label under the slider, for values a hand-edited file may hold; "12 pt" for 12.7 and the
    // slider's own values: tst_preferences_window.
    void marginTexts() {
        QCOMPARE(PreferencesWindowController::marginText(-0.5), QStringLiteral("0 pt"));
    }

    // The Qt window test reads the Linux words; these are the macOS ones.
    void formShowsTheFileInTheGivenWords() {
        Window w(WordStyle::MacOS);
        w.settings.store.saveConfig(
            PaneforgeConfig::makeDefault().withMoveToNextDisplayHotkey(HotkeyDefinition{46, 6144}));
        w.controller.show();
        QCOMPARE(w.shown().hotkeys.at(3).value, QString::fromUtf8("⌥ + ⌃ + Key 46"));
        QCOMPARE(w.shown().hideMenuBarIconTitle, QStringLiteral("Hide menu bar icon"));
    }

    void aRecordedHotkeyIsAnnouncedBeforeTheHotkeysResume() {
        Window w;
        w.controller.show();
        // Recording one row and then another records only the second.
        w.events().recordHotkeyClicked(HotkeySlotId::NextLayout);
        w.events().recordHotkeyClicked(HotkeySlotId::MoveToNextDisplay);
        QVERIFY(w.views.keyMonitor.press(45, 6144)); // swallowed
        QCOMPARE(w.settings.config(), PaneforgeConfig::makeDefault().withMoveToNextDisplayHotkey(
                                          HotkeyDefinition{45, 6144}));
        QCOMPARE(w.settings.journal,
                 (QStringList{"hotkeys paused", "PaneforgeMoveWindowHotkeyChanged", kConfigChanged,
                              "hotkeys resumed"}));
        QVERIFY(!w.views.keyMonitor.press(46, 6144)); // recording is over
    }

    void leavingTheWindowOrClearingEndsRecording() {
        Window w;
        w.settings.store.saveConfig(
            PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
        w.controller.show();
        w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
        w.events().windowDeactivated();
        QCOMPARE(w.controller.recordingSlot(), std::nullopt);
        // Clear while recording: the recording ends first, nothing is recorded.
        w.events().recordHotkeyClicked(HotkeySlotId::OpenEditor);
        w.events().clearHotkeyClicked(HotkeySlotId::OpenEditor);
        QVERIFY(!w.views.keyMonitor.press(14, 256));
        QCOMPARE(w.settings.config(), PaneforgeConfig::makeDefault());
        QCOMPARE(w.settings.journal,
                 (QStringList{"hotkeys paused", "hotkeys resumed", "hotkeys paused",
                              "PaneforgeHotkeyChanged", kConfigChanged, "hotkeys resumed"}));
    }

    // Disabled without a hot key to the preferences: tst_preferences_window.
    void aHiddenIconCanAlwaysBeShownAgain() {
        Window w;
        w.settings.preferences.setHotkey(HotkeySlotId::OpenPreferences, HotkeyDefinition{35, 0});
        w.controller.show();
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
