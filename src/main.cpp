#include "app/input/event_tap_manager.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/qt_scheduler.h"
#include "app/runtime/screen_diagnostics.h"
#include "app/snapping/snap_controller.h"
#include "cli/cli.h"
#include "core/config/config_store.h"
#include "core/diagnostics/file_logger.h"
#include "core/diagnostics/logger_factory.h"
#include "ui/snap_overlay_window.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <QTextStream>
#include <cstdio>
#include <memory>

#if defined(Q_OS_LINUX)
#include <QSocketNotifier>
#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>
#endif

#if defined(PANEFORGE_PLATFORM_X11)
#include "platform/x11/x11_compositor.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_event_tap_api.h"
#include "platform/x11/x11_window_service.h"
#elif defined(Q_OS_MACOS)
#include "platform/macos/accessibility_service.h"
#include "platform/macos/mac_accessibility_api.h"
#include "platform/macos/mac_display_api.h"
#include "platform/macos/mac_display_service.h"
#include "platform/macos/mac_event_tap_api.h"
#include "platform/macos/mac_overlay_window.h"
#endif

namespace paneforge {
namespace {

void fileLog(const QString& line) {
    FileLogger::shared().log(line);
}

// The native services of the platform the agent runs on, behind the app layer's interfaces.
struct PlatformServices {
    DisplayService* displays = nullptr;
    DisplayFrameService* displayFrames = nullptr;
    ScreenListing* screens = nullptr;
    WindowService* windows = nullptr;
    EventTapApi* eventTaps = nullptr;
    SnapOverlayEnvironment overlay;
};

#if defined(PANEFORGE_PLATFORM_X11)
class Platform {
public:
    explicit Platform(Scheduler& scheduler)
        : displays_(connection_)
        , windows_(connection_, scheduler, fileLog) {}

    bool isAvailable() const { return connection_.isValid(); }
    QString unavailableReason() const {
        return QStringLiteral("cannot connect to the X server; Paneforge needs an X11 session "
                              "(is DISPLAY set?)");
    }
    PlatformServices services() {
        PlatformServices s{&displays_, &displays_, &displays_, &windows_, &eventTaps_, {}};
        s.overlay.translucencyAvailable = [this] { return hasCompositingManager(connection_); };
        return s;
    }

private:
    X11Connection connection_;
    X11DisplayServices displays_;
    X11WindowService windows_;
    X11EventTapApi eventTaps_;
};
#elif defined(Q_OS_MACOS)
class Platform {
public:
    explicit Platform(Scheduler&)
        : accessibility_(accessibilityApi_, fileLog)
        , displays_(displayApi_, LoggerFactory::makeLogger(QStringLiteral("DisplayService"))) {}

    bool isAvailable() const { return true; }
    QString unavailableReason() const { return {}; }
    PlatformServices services() {
        PlatformServices s{&displays_, &displays_, &displays_, &accessibility_, &eventTaps_, {}};
        s.overlay.configureNativeWindow = [](QWidget& widget) {
            configureOverlayNativeWindow(static_cast<quintptr>(widget.winId()));
        };
        return s;
    }

private:
    MacAccessibilityApi accessibilityApi_;
    AccessibilityService accessibility_;
    MacDisplayApi displayApi_;
    MacDisplayService displays_;
    MacEventTapApi eventTaps_;
};
#endif

#if defined(Q_OS_LINUX)
// Turns SIGTERM and SIGINT (logout, Ctrl+C) into an orderly quit, so the log is flushed. The
// signals are blocked before any thread starts and read from a signalfd on the event loop.
class TerminationSignals {
public:
    TerminationSignals() {
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGTERM);
        sigaddset(&signals_, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    }
    ~TerminationSignals() {
        notifier_.reset();
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    void quitOnSignal() {
        fd_ = ::signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK);
        if (fd_ < 0) {
            // Without the descriptor the signals keep their default meaning: end the process.
            pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
            return;
        }
        notifier_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
            signalfd_siginfo info{};
            while (::read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            }
            QApplication::quit();
        });
    }

private:
    sigset_t signals_{};
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};
#endif

std::optional<QString> keyWindowTitle() {
    if (const QWidget* window = QApplication::activeWindow()) {
        return window->windowTitle();
    }
    return std::nullopt;
}

int runAgent(int argc, char** argv) {
    QElapsedTimer startup;
    startup.start();
#if defined(PANEFORGE_PLATFORM_X11)
    // The native layer speaks X11, so Qt must too (also under XWayland).
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        if (qEnvironmentVariableIsEmpty("DISPLAY")) {
            std::fputs("paneforge: no X11 display to run on (DISPLAY is not set). Start Paneforge "
                       "in an X11 desktop session, or see --help for the commands that need "
                       "none.\n",
                       stderr);
            return 1;
        }
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
#endif
#if defined(Q_OS_LINUX)
    TerminationSignals terminationSignals;
#endif
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Paneforge"));
    QApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
    const Logger logger = LoggerFactory::makeLogger(QStringLiteral("Agent"));

#if defined(Q_OS_LINUX)
    terminationSignals.quitOnSignal();
#endif
    QtScheduler scheduler;
    Platform platform(scheduler);
    if (!platform.isAvailable()) {
        logger.error(platform.unavailableReason());
        return 1;
    }
    PlatformServices services = platform.services();
    services.overlay.primaryScreenGeometry = [] {
        const QScreen* primary = QGuiApplication::primaryScreen();
        return primary ? QRectF(primary->geometry()) : QRectF();
    };

    NotificationCenter notifications;
    ConfigStore configStore(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                            defaultConfigDirectoryProvider());
    EventTapManager eventTapManager(*services.eventTaps, scheduler, notifications);
    QtSnapOverlayFactory overlays(services.overlay);

    fileLog(QStringLiteral("Paneforge ") + QStringLiteral(PANEFORGE_VERSION) +
            QStringLiteral(" starting"));
    ScreenDiagnostics(*services.screens, fileLog).logTopology(QStringLiteral("startup"));

    // Moving other applications' windows needs the user's consent on macOS (Accessibility).
    if (!services.windows->isTrusted()) {
        logger.notice(QStringLiteral("not yet allowed to move windows; asking for access"));
        services.windows->requestTrustPrompt();
    }

    SnapController snapController(SnapControllerServices{
        configStore, *services.displays, *services.displayFrames, *services.screens,
        *services.windows, eventTapManager, overlays, scheduler, keyWindowTitle, fileLog});
    snapController.start();

    StatusItemController statusItem(LoggerFactory::makeLogger(QStringLiteral("StatusItem")));
    statusItem.setOnQuit([] { QApplication::quit(); });
    const bool trayShown = statusItem.configureStatusItem();

    logger.info(QStringLiteral("ready in %1 ms (tray %2, event tap %3)")
                    .arg(startup.elapsed())
                    .arg(trayShown ? QStringLiteral("shown") : QStringLiteral("unavailable"))
                    .arg(eventTapManager.isTapInstalled() ? QStringLiteral("installed")
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
    for (int i = 1; i < argc; ++i) {
        args << QString::fromLocal8Bit(argv[i]);
    }
    if (!paneforge::isCliInvocation(args)) {
        return paneforge::runAgent(argc, argv);
    }
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Paneforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);
    return paneforge::runCli(QCoreApplication::arguments().mid(1), out, err);
}
