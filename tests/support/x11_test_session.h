#pragma once

#include "platform/x11/x11_connection.h"

#include <QPoint>
#include <QProcess>
#include <QTest>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

// Xvfb on a free display, optionally split into two monitors, with openbox managing real client
// windows. Nothing waits a fixed time: everything polls a condition against a deadline.
class X11TestSession {
public:
    struct Options {
        int width = 1920;
        int height = 1080;
        bool twoMonitors = false; // LEFT and RIGHT halves, side by side
        bool compositor = false;  // xcompmgr
        bool trayHost = false;    // trayer
    };

    explicit X11TestSession(Options options)
        : options_(options) {}
    ~X11TestSession();

    bool start(QString* error); // the server and the window manager; `error` says why not
    QString display() const { return display_; }
    qint64 serverProcessId() const {
        return processes_.empty() ? 0 : processes_.front()->processId();
    }

    // The new client window once the window manager lists it.
    std::optional<std::uint32_t> startClient(const QString& program, const QStringList& arguments,
                                             QString* error);
    // A program that runs until the session ends; its standard error is kept for the caller.
    QProcess* startProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& extra = {}) {
        return launch(program, arguments, extra, false);
    }
    bool run(const QString& program, const QStringList& arguments, QString* output = nullptr);

    QPoint pointer();
    std::vector<std::uint32_t> clientList() const { return rootCardinals("_NET_CLIENT_LIST"); }
    std::vector<std::uint32_t> rootCardinals(const char* property) const {
        return connection_->cardinals(connection_->root(), property, XCB_ATOM_ANY);
    }
    std::uint32_t activeWindow() const {
        const auto active = rootCardinals("_NET_ACTIVE_WINDOW");
        return active.empty() ? 0 : active.front();
    }
    bool activate(std::uint32_t window) {
        return run("xdotool", {"windowactivate", "--sync", QString::number(window)}) &&
               waitUntil([&] { return activeWindow() == window; });
    }
    // The mapped windows of a class, or titled `name` (a regular expression) when it is given.
    QStringList visibleWindows(const QString& className, const QString& name = {});

    static bool waitUntil(const std::function<bool()>& condition,
                          std::chrono::milliseconds timeout = std::chrono::seconds(10));

private:
    QProcessEnvironment environment() const;
    QProcess* launch(const QString& program, const QStringList& arguments,
                     const QProcessEnvironment& extra = {}, bool forwardErrors = true,
                     bool keepOutput = false);
    bool selectionOwned(const char* selection) const;

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
