#include "app/shell/application_controller.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#if defined(PANEFORGE_TEST_XDG_AUTOSTART)
#include "platform/x11/xdg_autostart.h"
#endif

#include <QTemporaryDir>
#include <QtTest>
#include <set>

using namespace paneforge;

namespace {
using Action = std::function<void()> StatusMenuActions::*;
}
Q_DECLARE_METATYPE(LoginItemStatus)
Q_DECLARE_METATYPE(Action)
Q_DECLARE_METATYPE(std::optional<bool>)

namespace {

// Every hot key set: key codes 0 to 5, with Command.
PaneforgeConfig allHotkeys(PaneforgeConfig config = PaneforgeConfig::makeDefault()) {
    for (const HotkeySlot& slot : hotkeySlots()) {
        config = slot.write(config, HotkeyDefinition{slot.id() - 1, modifier_bits::kCommand});
    }
    return config;
}

struct Application {
    explicit Application(const PaneforgeConfig& config = PaneforgeConfig::makeDefault()) {
        save(config);
        platform.desk.addScreen(1, {0, 0, 1440, 900}, {0, 0, 1440, 875});
        const fakes::Journal journal = [this](const QString& line) { log << line; };
        platform.setJournal(journal);
        views.journal = journal;
    }

    ApplicationController& started() {
        controller.emplace(ApplicationServices{platform, views, scheduler, notifications, store,
                                               [this](const QString& line) { log << line; },
                                               QStringLiteral("/logs/Paneforge.log"),
                                               [this] { log << QStringLiteral("quit"); }});
        controller->start();
        return *controller;
    }
    void save(const PaneforgeConfig& config) { store.saveConfig(config); }
    PaneforgeConfig config() const { return store.loadConfig(); }
    std::set<std::uint32_t> registeredIds() const {
        std::set<std::uint32_t> ids;
        for (const auto& [handle, id] : platform.hotkeyApi.registered) {
            ids.insert(id);
        }
        return ids;
    }
    int indexOf(const QString& prefix, int from = 0) const {
        for (int i = from; i < log.size(); ++i) {
            if (log[i].startsWith(prefix)) {
                return i;
            }
        }
        return -1;
    }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    ManualScheduler scheduler;
    NotificationCenter notifications;
    fakes::Platform platform;
    fakes::Views views;
    QStringList log;
    std::optional<ApplicationController> controller;
};

const std::set<std::uint32_t> kAllIds{1, 2, 3, 4, 5, 6};

} // namespace

class ApplicationControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void startRunsInOrderAndArmsTheTap() {
        Application app(
            PaneforgeConfig::makeDefault().withOpenEditorHotkey(HotkeyDefinition{14, 256}));
        const ApplicationController& controller = app.started();

        int at = 0;
        for (const char* step :
             {"ApplicationController.start", "ScreenDiagnostics.appStart count=1",
              "statusItem.made", "OpenEditor hotkey: keyCode=14 modifiers=256",
              "HotkeyManager.register id=1 keyCode=14 modifiers=256",
              "OpenPreferences hotkey: nil -> unregister", "HotkeyManager.unregister id=6",
              "ScreenDiagnostics.snapStart count=1", "quickStart.present", "updater.start"}) {
            at = app.indexOf(QString::fromUtf8(step), at);
            QVERIFY2(at >= 0, qPrintable(QStringLiteral("missing or out of order: %1\n%2")
                                             .arg(QString::fromUtf8(step), app.log.join('\n'))));
        }
        QCOMPARE(app.registeredIds(), (std::set<std::uint32_t>{1}));
        QVERIFY(controller.isEventTapInstalled());
        // Once (that the tap feeds the snapping: agent_snapping).
        QCOMPARE(app.platform.taps.creations, 1);
    }

    void hideSettingIsFollowedLive() {
        Application app(allHotkeys().withHideMenuBarIcon(true));
        const ApplicationController& controller = app.started();
        // No icon, yet the hot keys and the snapping start.
        QCOMPARE(app.views.statusItemsMade, 0);
        QCOMPARE(app.registeredIds(), kAllIds);
        QVERIFY(controller.isEventTapInstalled());

        app.save(app.config().withHideMenuBarIcon(false));
        app.notifications.post(Notification::ConfigChanged);
        QCOMPARE(app.views.statusItemsMade, 1);
        // The same value again: still the one icon.
        app.notifications.post(Notification::ConfigChanged);
        QCOMPARE(app.views.statusItemsMade, 1);
        QVERIFY(controller.isStatusItemShown());

        app.save(app.config().withHideMenuBarIcon(true));
        app.notifications.post(Notification::ConfigChanged);
        QVERIFY(!controller.isStatusItemShown());
        QCOMPARE(app.log.filter("statusItem.removed").size(), 1);
        QCOMPARE(app.registeredIds(), kAllIds);
    }

    // The hot keys that a session presses are proved there (agent_shell, agent_preferences,
    // agent_snapping); these are the others.
    void hotkeysTriggerTheirActions_data() {
        QTest::addColumn<uint>("id");
        QTest::addColumn<bool>("preferencesOpen");
        QTest::addColumn<QString>("effect"); // the last line logged
        // Not over the preferences, where the user may be recording a hot key.
        QTest::newRow("open editor over the preferences")
            << 1u << true << "ApplicationController.handleOpenEditorHotkey";
        QTest::newRow("previous layout")
            << 6u << false << "LayoutCycleController.cyclePrevious display=";
    }
    void hotkeysTriggerTheirActions() {
        QFETCH(uint, id);
        QFETCH(bool, preferencesOpen);
        QFETCH(QString, effect);
        Application app(allHotkeys());
        app.started();
        if (preferencesOpen) {
            app.views.statusMenu->openPreferences();
        }
        app.platform.hotkeyApi.pressed(id);
        app.scheduler.runPosted();
        QVERIFY2(app.log.last().startsWith(effect), qPrintable(app.log.join('\n')));
    }

    void eachNotificationReRegistersItsHotkey_data() {
        QTest::addColumn<int>("slot");
        for (int i = 0; i < 6; ++i) {
            QTest::addRow("id %d", i + 1) << i;
        }
    }
    void eachNotificationReRegistersItsHotkey() {
        QFETCH(int, slot);
        const HotkeySlot& changed = hotkeySlots()[std::size_t(slot)];
        const HotkeySlot& other = hotkeySlots()[std::size_t((slot + 1) % 6)];
        Application app;
        app.started();
        QVERIFY(app.registeredIds().empty());

        app.save(changed.write(app.config(), HotkeyDefinition{40, modifier_bits::kControl}));
        app.notifications.post(other.changed);
        QVERIFY(app.registeredIds().empty());
        app.notifications.post(changed.changed);
        QCOMPARE(app.registeredIds(), (std::set<std::uint32_t>{changed.id()}));

        // Cleared in the file: the configuration notice takes it away.
        app.save(changed.write(app.config(), std::nullopt));
        app.notifications.post(Notification::ConfigChanged);
        QVERIFY(app.registeredIds().empty());
    }

    void menuRowsReachTheirControllers_data() {
        QTest::addColumn<Action>("row");
        QTest::addColumn<bool>("updaterAvailable");
        QTest::addColumn<QStringList>("effects");
        using M = StatusMenuActions;
        const auto row = [](const char* name, Action action, QStringList effects,
                            bool updater = false) {
            QTest::newRow(name) << action << updater << effects;
        };
        // The rows a session walks to are proved there (agent_shell, agent_onboarding). The display
        // has no layouts yet: the selector saves one first, cycling has nothing to do.
        const QString display = fakes::Desk::identifierFor(1).stableId();
        row("switch layout", &M::openLayoutSelector,
            {"LayoutSelectorController.show display=" + display + " layouts=1"});
        row("next layout", &M::nextLayout,
            {"LayoutCycleController.cycleNext display=" + display + " none"});
        row("previous layout", &M::previousLayout,
            {"LayoutCycleController.cyclePrevious display=" + display + " none"});
        row("preferences", &M::openPreferences, {"preferences.show"});
        row("backup", &M::backupSettings, {"backup.choose"});
        row("updates, none here", &M::checkForUpdates,
            {"updater.check", "alert Check for Updates: no updater here"});
        row("updates", &M::checkForUpdates, {"updater.check"}, true);
        row("quit", &M::quit, {"quit"});
    }
    void menuRowsReachTheirControllers() {
        QFETCH(Action, row);
        QFETCH(bool, updaterAvailable);
        QFETCH(QStringList, effects);
        Application app;
        app.platform.updates.available = updaterAvailable;
        app.started();
        const int before = int(app.log.size());
        ((*app.views.statusMenu).*row)();
        QStringList actual = app.log.mid(before);
        actual.replaceInStrings(QStringLiteral(": not built yet"), QString());
        QCOMPARE(actual, effects);
    }

    void zoneEditorSubmenuListsTheDisplays() {
        Application app;
        app.started();
        // Displays connected later show up at the next opening; ids beyond 31 bits come back whole.
        app.platform.desk.addScreen(0xFFFFFFF0u, {1440, 0, 1440, 900}, {1440, 0, 1440, 900});
        const auto displays = app.views.statusMenu->displays();
        QCOMPARE(displays.size(), std::size_t{2});
        QCOMPARE(displays[1].title, QStringLiteral("4294967280"));
        QCOMPARE(displays[1].identifier, fakes::Desk::identifierFor(0xFFFFFFF0u));
        app.views.statusMenu->openZoneEditorForDisplay(displays[1].displayId);
        QCOMPARE(app.views.editors.open().size(), std::size_t{1});
        QCOMPARE(app.views.editors.open().front()->model->visibleFrame(),
                 DesktopRect(1440, 0, 1440, 900));
    }

    void quickStartOnceThePermissionsAreReady_data() {
        QTest::addColumn<std::optional<bool>>("completed");
        QTest::newRow("not completed") << std::optional<bool>(false);
        QTest::newRow("from before the guide") << std::optional<bool>();
    }
    void quickStartOnceThePermissionsAreReady() {
        QFETCH(std::optional<bool>, completed);
        ConfigSnapshot snapshot = PaneforgeConfig::makeDefault().snapshot();
        snapshot.hasCompletedQuickStart = completed;
        Application app{PaneforgeConfig(snapshot)};
        app.platform.windowList.trusted = false;
        app.started();
        QVERIFY(!app.controller->isQuickStartShown());

        app.platform.windowList.trusted = true;
        app.scheduler.advance(PrivacyPermissionGate::watchdogIntervalSeconds);
        QCOMPARE(app.controller->isQuickStartShown(), completed == false);
        if (app.controller->isQuickStartShown()) {
            // Closed however, it counts as completed.
            app.views.quickStart->dismiss();
            QCOMPARE(app.config().hasCompletedQuickStart(), std::optional<bool>(true));
        }
    }

    void recordingAHotkeyPausesTheHotkeys() {
        Application app(allHotkeys());
        app.started();
        app.views.statusMenu->openPreferences();
        // While a combination is recorded, no hot key holds the keyboard, whatever is announced;
        // cancelled, they are back as they were (a recorded one: agent_preferences).
        app.views.preferences->events.recordHotkeyClicked(HotkeySlotId::MoveToNextDisplay);
        QVERIFY(app.registeredIds().empty());
        app.notifications.post(Notification::ConfigChanged);
        QVERIFY(app.registeredIds().empty());
        QVERIFY(app.views.keyMonitor.press(53, 0));
        QCOMPARE(app.registeredIds(), kAllIds);
    }

    void callbacksDoNothingOnceTheControllerIsGone() {
        Application app(allHotkeys());
        app.platform.desk.addScreen(2, {1440, 0, 1440, 900}, {1440, 0, 1440, 900});
        app.platform.windowList.add(7, {100, 100, 400, 300});
        app.started();
        app.platform.hotkeyApi.pressed(4); // its action waits for the event loop
        app.controller.reset();
        app.scheduler.runPosted();
        app.views.statusMenu->quit();
        QVERIFY(app.platform.windowList.setFrameCalls.empty());
        QVERIFY(!app.log.contains(QStringLiteral("quit")));
        QVERIFY(app.views.statusMenu->displays().empty());
    }

    void launchAtLoginFollowsTheSystem_data() {
        QTest::addColumn<bool>("applies");
        QTest::addColumn<LoginItemStatus>("system");
        QTest::addColumn<bool>("stored");
        QTest::addColumn<bool>("failChanges");
        QTest::addColumn<bool>("afterStart");
        QTest::addColumn<bool>("later");
        QTest::addColumn<QStringList>("calls");
        using S = LoginItemStatus;
        const QStringList none;
        const QStringList registers{"loginItems.register"};
        const QStringList unregisters{"loginItems.unregister"};
        QTest::newRow("outside a bundle nothing is touched")
            << false << S::Enabled << false << false << false << true << none;
        QTest::newRow("the system wins at start")
            << true << S::NotRegistered << true << false << false << true << registers;
        QTest::newRow("a login item added in the system settings")
            << true << S::Enabled << false << false << true << false << unregisters;
        QTest::newRow("awaiting approval counts as registered")
            << true << S::RequiresApproval << true << false << true << true << none;
        QTest::newRow("awaiting approval, then turned off")
            << true << S::RequiresApproval << true << false << true << false << unregisters;
        QTest::newRow("not found counts as off")
            << true << S::NotFound << true << false << false << true << registers;
        QTest::newRow("a refused change is not retried")
            << true << S::NotRegistered << false << true << false << true << registers;
    }
    void launchAtLoginFollowsTheSystem() {
        QFETCH(bool, applies);
        QFETCH(LoginItemStatus, system);
        QFETCH(bool, stored);
        QFETCH(bool, failChanges);
        QFETCH(bool, afterStart);
        QFETCH(bool, later);
        QFETCH(QStringList, calls);
        Application app(PaneforgeConfig::makeDefault().withLaunchAtLogin(stored));
        app.platform.logins.applies = applies;
        app.platform.logins.state = system;
        app.platform.logins.failChanges = failChanges;
        app.started();
        QCOMPARE(app.config().launchAtLogin(), std::optional<bool>(afterStart));
        QVERIFY(app.log.filter("loginItems.").isEmpty());

        // The preference changes; a second notice of the same value changes nothing more.
        app.save(app.config().withLaunchAtLogin(later));
        app.notifications.post(Notification::ConfigChanged);
        app.notifications.post(Notification::ConfigChanged);
        QCOMPARE(app.log.filter("loginItems."), calls);
    }
#if defined(PANEFORGE_TEST_XDG_AUTOSTART)
    void xdgAutostartEntry_data() {
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("entry"); // the autostart file at start; empty for none
        QTest::addColumn<bool>("stored");
        QTest::addColumn<bool>("afterStart");
        QTest::addColumn<bool>("later");
        QTest::addColumn<QString>("line"); // in the file at the end; empty: no file
        const QString enabled = "[Desktop Entry]\nType=Application\nExec=/usr/bin/paneforge\n";
        QTest::newRow("installed, turned on")
            << "/usr/bin/paneforge"
            << "" << false << false << true << "Exec=/usr/bin/paneforge";
        QTest::newRow("installed, turned off")
            << "/usr/bin/paneforge" << enabled << true << true << false << "";
        QTest::newRow("switched off in the desktop's settings")
            << "/usr/local/bin/paneforge"
            << "[Desktop Entry]\nExec=paneforge\nHidden=true\n"
            << true << false << true << "Exec=/usr/local/bin/paneforge";
        QTest::newRow("switched off in GNOME's settings")
            << "/usr/bin/paneforge"
            << "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n"
            << true << false << false << "X-GNOME-Autostart-enabled=false";
        // A build tree never touches it: agent_shell.
        QTest::newRow("under /opt, quoted")
            << "/opt/Pane forge/bin/paneforge"
            << "" << false << false << true << "Exec=\"/opt/Pane forge/bin/paneforge\"";
    }
    void xdgAutostartEntry() {
        QFETCH(QString, executable);
        QFETCH(QString, entry);
        QFETCH(bool, stored);
        QFETCH(bool, afterStart);
        QFETCH(bool, later);
        QFETCH(QString, line);
        QTemporaryDir home;
        const QString autostart = home.filePath(".config/autostart");
        XdgAutostartLoginItem loginItem(autostart, executable, home.path());
        if (!entry.isEmpty()) {
            QVERIFY(QDir().mkpath(autostart));
            QFile file(loginItem.entryPath());
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(entry.toUtf8());
        }
        Application app(PaneforgeConfig::makeDefault().withLaunchAtLogin(stored));
        app.platform.loginService = &loginItem;
        app.started();
        QCOMPARE(app.config().launchAtLogin(), std::optional<bool>(afterStart));

        app.save(app.config().withLaunchAtLogin(later));
        app.notifications.post(Notification::ConfigChanged);
        QFile file(loginItem.entryPath());
        QCOMPARE(file.exists(), !line.isEmpty());
        if (file.open(QIODevice::ReadOnly)) {
            const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
            QVERIFY2(lines.contains(line), qPrintable(lines.join('\n')));
        }
    }
#endif
};

QTEST_GUILESS_MAIN(ApplicationControllerTest)
#include "tst_application_controller.moc"
