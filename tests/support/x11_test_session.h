#pragma once

#include "platform/x11/x11_connection.h"

#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// A private X server for end-to-end tests: Xvfb on a free display, optionally split into two
// monitors, with openbox managing real client windows. Every process is started and stopped by
// its own id; nothing waits a fixed time, everything polls a condition against a deadline.
class X11TestSession {
public:
    struct Options {
        int width = 1920;
        int height = 1080;
        bool twoMonitors = false; // LEFT and RIGHT halves, side by side
        bool windowManager = true;
        bool compositor = false; // xcompmgr, owner of _NET_WM_CM_S0
        bool trayHost = false;   // trayer, owner of _NET_SYSTEM_TRAY_S0
    };

    explicit X11TestSession(Options options);
    ~X11TestSession();

    // Starts the server (and the window manager). On failure `error` says why.
    bool start(QString* error);
    QString display() const { return display_; }
    // The process id of the X server (for figures of the CPU it uses); 0 before it starts.
    qint64 serverProcessId() const {
        return processes_.empty() ? 0 : processes_.front()->processId();
    }
    QProcessEnvironment environment() const;

    // Starts a client and waits until the window manager lists a new client window; returns it.
    std::optional<std::uint32_t> startClient(const QString& program, const QStringList& arguments,
                                             QString* error);
    // Starts a long-running program in the session (with extra environment entries); it is
    // stopped with the session. Its standard error is kept for the caller to read.
    QProcess* startProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& extra = {});
    // Whether some client owns the named selection, e.g. "_NET_WM_CM_S0".
    bool selectionOwned(const char* selection) const;
    // Runs a short command (xdotool, xrandr, ...) to its end; true when it exits with status 0.
    bool run(const QString& program, const QStringList& arguments, QString* output = nullptr);

    // Where the pointer is, in root coordinates.
    QPoint pointer();
    std::vector<std::uint32_t> clientList() const;
    std::vector<std::uint32_t> rootCardinals(const char* property) const;
    // The window manager's active window, or 0.
    std::uint32_t activeWindow() const;
    // Asks the window manager to activate `window` and waits until it is the active one.
    bool activate(std::uint32_t window);
    // The mapped windows xdotool finds by class name, or by title when `name` is given (a
    // regular expression).
    QStringList visibleWindows(const QString& className, const QString& name = {});

    // Polls `condition` until it holds or `timeout` passes.
    static bool waitUntil(const std::function<bool()>& condition,
                          std::chrono::milliseconds timeout = std::chrono::seconds(10));

private:
    QProcess* launch(const QString& program, const QStringList& arguments,
                     const QProcessEnvironment& extra = {}, bool forwardErrors = true,
                     bool keepOutput = false);

    Options options_;
    QString display_;
    std::vector<std::unique_ptr<QProcess>> processes_;
    std::unique_ptr<paneforge::X11Connection> connection_;
};

// The main() of an X11 test: starts a session, points Qt at it before the QGuiApplication exists,
// and runs `body` (typically QTest::qExec) inside that application.
int runWithX11Session(int argc, char** argv, X11TestSession::Options options,
                      const std::function<int(X11TestSession&)>& body);

// The main() of a test class built with its session: `arguments` are added to the command line's.
template <typename Test>
int runX11Test(int argc, char** argv, X11TestSession::Options options = {},
               const QStringList& arguments = {}) {
    return runWithX11Session(argc, argv, options, [&](X11TestSession& session) {
        Test test(session);
        return QTest::qExec(&test, QCoreApplication::arguments() + arguments);
    });
}
