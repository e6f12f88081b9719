#include "app/shell/application_controller.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#if defined(PANEFORGE_TEST_XDG_AUTOSTART)
#include "platform/x11/xdg_autostart.h"
#endif

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {
using Action = std::function<void()> StatusMenuActions::*;
}
Q_DECLARE_METATYPE(LoginItemStatus)
Q_DECLARE_METATYPE(Action)

namespace {

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
        platform.setJournal(journal);
        views.journal = journal;
    }
    ApplicationController& started() {
        controller.emplace(ApplicationServices{platform, views, scheduler, notifications, store,
                                               journal, QStringLiteral("/logs/Paneforge.log"),
                                               [this] { log << QStringLiteral("quit"); }});
        controller->start();
        return *controller;
    }
    void save(const PaneforgeConfig& config) { store.saveConfig(config); }
    PaneforgeConfig config() const { return store.loadConfig(); }
    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    ManualScheduler scheduler;
    NotificationCenter notifications;
    fakes::Platform platform;
    fakes::Views views;
    QStringList log;
    fakes::Journal journal = [this](const QString& line) { log << line; };
    std::optional<ApplicationController> controller;
};

} // namespace

// What a session presses and clicks through the real agent is proved there (agent_shell,
// agent_snapping, agent_onboarding): the start, the hot keys and tray rows it uses.
class ApplicationControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Started with the icon shown: agent_snapping, agent_shell.
    void hiddenIconAtStartComesWhenTheSettingChanges() {
        Application app(allHotkeys().withHideMenuBarIcon(true));
        app.started();
        QCOMPARE(app.views.statusItemsMade, 0);
        QVERIFY(app.log.contains("updater.start"));
        app.save(app.config().withHideMenuBarIcon(false));
        app.notifications.post(Notification::ConfigChanged);
        QCOMPARE(app.views.statusItemsMade, 1);
    }

    void hotkeysTriggerTheirActions() {
        Application app(allHotkeys());
        app.started();
        app.platform.hotkeyApi.pressed(6);
        app.scheduler.runPosted();
        QVERIFY(app.log.last().startsWith("LayoutCycleController.cyclePrevious"));
        // No editor over the preferences, where the user may be recording a hot key.
        app.views.statusMenu->openPreferences();
        app.platform.hotkeyApi.pressed(1);
        app.scheduler.runPosted();
        QVERIFY(app.views.editors.made.empty());
    }

    void menuRowsReachTheirControllers_data() {
        QTest::addColumn<Action>("row");
        QTest::addColumn<bool>("updaterAvailable");
        QTest::addColumn<QStringList>("effects");
        const auto row = [](const char* name, Action action, QStringList effects,
                            bool updater = false) {
            QTest::newRow(name) << action << updater << effects;
        };
        // The display has no layouts yet: the selector saves one first, cycling has nothing to do.
        const QString display = fakes::Desk::identifierFor(1).stableId();
        using M = StatusMenuActions;
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

    // A first start shows it: agent_onboarding.
    void quickStartOnceThePermissionsAreReady() {
        ConfigSnapshot fromBeforeTheGuide = PaneforgeConfig::makeDefault().snapshot();
        fromBeforeTheGuide.hasCompletedQuickStart.reset();
        for (const auto& config : {PaneforgeConfig::makeDefault().withHasCompletedQuickStart(false),
                                   PaneforgeConfig(fromBeforeTheGuide)}) {
            Application app(config);
            app.platform.windowList.trusted = false;
            app.started();
            QVERIFY(!app.controller->isQuickStartShown());
            app.platform.windowList.trusted = true;
            app.scheduler.advance(PrivacyPermissionGate::watchdogIntervalSeconds);
            QCOMPARE(app.controller->isQuickStartShown(), config.hasCompletedQuickStart() == false);
        }
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

    // Outside an installed copy nothing is touched: agent_shell.
    void launchAtLoginFollowsTheSystem_data() {
        QTest::addColumn<LoginItemStatus>("system");
        QTest::addColumn<bool>("stored");
        QTest::addColumn<bool>("failChanges");
        QTest::addColumn<bool>("afterStart");
        QTest::addColumn<bool>("later");
        QTest::addColumn<QString>("call"); // after the change; empty: none
        const auto row = [](const char* name, LoginItemStatus system, bool stored, bool fail,
                            bool afterStart, bool later, const char* call) {
            QTest::newRow(name) << system << stored << fail << afterStart << later << call;
        };
        using S = LoginItemStatus;
        row("the system wins at start", S::NotRegistered, true, false, false, true, "register");
        row("added in the system settings", S::Enabled, false, false, true, false, "unregister");
        row("awaiting approval is registered", S::RequiresApproval, true, false, true, true, "");
        row("a refused change is not retried", S::NotRegistered, false, true, false, true,
            "register");
    }
    void launchAtLoginFollowsTheSystem() {
        QFETCH(LoginItemStatus, system);
        QFETCH(bool, stored);
        QFETCH(bool, failChanges);
        QFETCH(bool, afterStart);
        QFETCH(bool, later);
        QFETCH(QString, call);
        Application app(PaneforgeConfig::makeDefault().withLaunchAtLogin(stored));
        app.platform.logins.state = system;
        app.platform.logins.failChanges = failChanges;
        app.started();
        QCOMPARE(app.config().launchAtLogin(), std::optional<bool>(afterStart));
        QVERIFY(app.log.filter("loginItems.").isEmpty());
        // The preference changes; a second notice of the same value changes nothing more.
        app.save(app.config().withLaunchAtLogin(later));
        app.notifications.post(Notification::ConfigChanged);
        app.notifications.post(Notification::ConfigChanged);
        QCOMPARE(app.log.filter("loginItems."),
                 call.isEmpty() ? QStringList() : QStringList{"loginItems." + call});
    }
#if defined(PANEFORGE_TEST_XDG_AUTOSTART)
    void xdgAutostartEntry_data() {
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("entry"); // the autostart file at start; empty for none
        QTest::addColumn<bool>("stored");
        QTest::addColumn<bool>("afterStart");
        QTest::addColumn<bool>("later");
        QTest::addColumn<QString>("line"); // in the file at the end; empty: no file
        const auto row = [](const char* name, const char* executable, const char* entry,
                            bool stored, bool afterStart, bool later, const char* line) {
            QTest::newRow(name) << executable << entry << stored << afterStart << later << line;
        };
        // A build tree never touches it: agent_shell.
        const char* usr = "/usr/bin/paneforge";
        row("turned off", usr, "[Desktop Entry]\nExec=/usr/bin/paneforge\n", true, true, false, "");
        row("hidden in the desktop's settings", "/usr/local/bin/paneforge",
            "[Desktop Entry]\nExec=paneforge\nHidden=true\n", true, false, true,
            "Exec=/usr/local/bin/paneforge");
        row("under /opt, quoted", "/opt/Pane forge/bin/paneforge", "", false, false, true,
            "Exec=\"/opt/Pane forge/bin/paneforge\"");
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
        QFile file(loginItem.entryPath());
        if (!entry.isEmpty()) {
            QVERIFY(QDir().mkpath(autostart) && file.open(QIODevice::WriteOnly));
            file.write(entry.toUtf8());
            file.close();
        }
        Application app(PaneforgeConfig::makeDefault().withLaunchAtLogin(stored));
        app.platform.loginService = &loginItem;
        app.started();
        QCOMPARE(app.config().launchAtLogin(), std::optional<bool>(afterStart));
        app.save(app.config().withLaunchAtLogin(later));
        app.notifications.post(Notification::ConfigChanged);
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
