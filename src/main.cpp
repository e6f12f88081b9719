#include "app/ports/platform.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/qt_scheduler.h"
#include "app/shell/application_controller.h"
#include "cli/cli.h"
#include "core/config/config_store.h"
#include "core/diagnostics/file_logger.h"
#include "core/diagnostics/logger_factory.h"
#include "ui/qt_view_factory.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTextStream>
#include <cstdio>

namespace paneforge {
namespace {

void fileLog(const QString& line) {
    FileLogger::shared().log(line);
}

int runAgent(int argc, char** argv) {
    QElapsedTimer startup;
    startup.start();
    if (const auto reason = prepareAgentProcess()) {
        std::fprintf(stderr, "paneforge: %s\n", qUtf8Printable(*reason));
        return 1;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Paneforge"));
    QApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));
    // Closing a window never ends the agent; only the menu's Quit or the session does.
    QApplication::setQuitOnLastWindowClosed(false);
    const Logger logger = LoggerFactory::makeLogger(QStringLiteral("Agent"));

    QtScheduler scheduler;
    const auto platform = makePlatform(PlatformContext{scheduler, fileLog});
    if (!platform) {
        logger.error(QStringLiteral("cannot reach the window system; Paneforge needs an X11 "
                                    "session on Linux"));
        return 1;
    }
    platform->quitOnTerminationSignals([] { QApplication::quit(); });
    platform->becomeMenuBarAgent();

    NotificationCenter notifications;
    ConfigStore configStore(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                            defaultConfigDirectoryProvider());
    QtViewFactory views(platform->nativeWindows(), fileLog);
    fileLog(QStringLiteral("Paneforge ") + QStringLiteral(PANEFORGE_VERSION) +
            QStringLiteral(" starting"));
    ApplicationController application(
        ApplicationServices{*platform, views, scheduler, notifications, configStore, fileLog,
                            FileLogger::shared().filePath(), [] { QApplication::quit(); }});
    application.start();

    logger.info(QStringLiteral("ready in %1 ms (tray %2, event tap %3)")
                    .arg(startup.elapsed())
                    .arg(application.isStatusItemShown() ? QStringLiteral("shown")
                                                         : QStringLiteral("hidden"))
                    .arg(application.isEventTapInstalled() ? QStringLiteral("installed")
                                                           : QStringLiteral("waiting")));
    const int status = QApplication::exec();
    logger.info(QStringLiteral("quitting"));
    fileLog(QStringLiteral("Paneforge quitting"));
    FileLogger::shared().flush();
    return status;
}

} // namespace
} // namespace paneforge

// Composition root. With arguments the executable runs a headless command; without, it is the
// snapping agent.
int main(int argc, char** argv) {
    QStringList args;
    QList<QByteArray> nativeArgs;
    for (int i = 1; i < argc; ++i) {
        args << QString::fromLocal8Bit(argv[i]);
        nativeArgs << QByteArray(argv[i]);
    }
    if (!paneforge::isCliInvocation(args)) {
        return paneforge::runAgent(argc, argv);
    }
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Paneforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);
    // The bytes as given: a file name that is not valid in the locale's encoding still opens.
    return paneforge::runCli(nativeArgs, out, err);
}
