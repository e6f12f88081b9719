#include "app/shell/application_controller.h"
#include "core/input/hotkey_formatter.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {

struct Application {
    explicit Application(const std::optional<PaneforgeConfig>& config) {
        if (config) {
            store.saveConfig(*config);
        }
        platform.desk.addScreen(1, {0, 0, 1440, 900}, {0, 0, 1440, 875});
    }

    ApplicationController& started() {
        controller.emplace(ApplicationServices{platform, views, scheduler, notifications, store,
                                               [this](const QString& line) { log << line; },
                                               [this] { ++quits; }});
        controller->start();
        return *controller;
    }
    int indexOf(const QString& prefix) const {
        for (int i = 0; i < log.size(); ++i) {
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
    int quits = 0;
    std::optional<ApplicationController> controller;
};

} // namespace

class ApplicationControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void startRunsInOrderAndArmsTheTap();
    void statusItemFollowsTheHideSetting_data();
    void statusItemFollowsTheHideSetting();
};

void ApplicationControllerTest::startRunsInOrderAndArmsTheTap() {
    Application app(std::nullopt);
    const ApplicationController& controller = app.started();

    const int start = app.indexOf(QStringLiteral("ApplicationController.start"));
    const int appStart = app.indexOf(QStringLiteral("ScreenDiagnostics.appStart count=1"));
    const int snapStart = app.indexOf(QStringLiteral("ScreenDiagnostics.snapStart count=1"));
    QVERIFY2(start == 0 && appStart > start && snapStart > appStart,
             qPrintable(app.log.join('\n')));
    QVERIFY(controller.isEventTapInstalled());
    QCOMPARE(app.platform.taps.creations, 1);

    // The tap feeds the snap controller: a drag with the combination shows the overlay.
    app.platform.windowList.add(7, {100, 100, 400, 300});
    app.platform.desk.pointer = {200, 390};
    app.platform.taps.handler({InputEvent::LeftMouseDown, app.platform.desk.pointer, 0});
    app.platform.taps.handler(
        {InputEvent::FlagsChanged, app.platform.desk.pointer, ModifierMapper::kCommandFlag});
    QCOMPARE(app.views.overlays.built.size(), std::size_t{1});

    // The status menu's Quit reaches the event loop.
    QVERIFY(app.views.statusItem);
    app.views.statusItem->actions.quit();
    QCOMPARE(app.quits, 1);
}

void ApplicationControllerTest::statusItemFollowsTheHideSetting_data() {
    QTest::addColumn<std::optional<bool>>("hide");
    QTest::addColumn<int>("statusItems");
    QTest::newRow("defaults") << std::optional<bool>() << 1;
    QTest::newRow("shown") << std::optional<bool>(false) << 1;
    QTest::newRow("hidden") << std::optional<bool>(true) << 0;
}

void ApplicationControllerTest::statusItemFollowsTheHideSetting() {
    QFETCH(std::optional<bool>, hide);
    QFETCH(int, statusItems);
    const auto defaults = PaneforgeConfig::makeDefault();
    Application app(hide ? defaults.withHideMenuBarIcon(*hide) : defaults);
    const ApplicationController& controller = app.started();
    QCOMPARE(app.views.statusItemsMade, statusItems);
    QCOMPARE(controller.isStatusItemShown(), statusItems == 1);
    // Snapping starts either way.
    QVERIFY(controller.isEventTapInstalled());
}

QTEST_GUILESS_MAIN(ApplicationControllerTest)
#include "tst_application_controller.moc"
