#include "x11_test_session.h"

#include <QFile>
#include <QGuiApplication>
#include <QThread>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/prctl.h>
#include <unistd.h>
#include <xcb/xcb.h>

struct X11TestSession::Connection {
    xcb_connection_t* c = nullptr;
    xcb_window_t root = XCB_NONE;
    ~Connection() {
        if (c) {
            xcb_disconnect(c);
        }
    }
};

namespace {

xcb_atom_t internAtom(xcb_connection_t* c, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return atom;
}

} // namespace

X11TestSession::X11TestSession(Options options)
    : options_(options) {}

X11TestSession::~X11TestSession() {
    connection_.reset();
    // Stop in reverse order: clients and the window manager before the server.
    for (auto it = processes_.rbegin(); it != processes_.rend(); ++it) {
        QProcess& process = **it;
        if (process.state() != QProcess::NotRunning) {
            process.terminate();
            if (!process.waitForFinished(3000)) {
                process.kill();
                process.waitForFinished(3000);
            }
        }
    }
}

QProcessEnvironment X11TestSession::environment() const {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", display_);
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    return env;
}

QProcess* X11TestSession::launch(const QString& program, const QStringList& arguments,
                                 const QProcessEnvironment& extra, bool forwardErrors) {
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment env = environment();
    env.insert(extra);
    process->setProcessEnvironment(env);
    if (forwardErrors) {
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }
    process->setStandardOutputFile(QProcess::nullDevice());
    // The server, window manager and clients must not outlive a test that dies without running
    // its destructors (a crash, a sanitizer report): they would hold the test's output open.
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process->start(program, arguments);
    QProcess* raw = process.get();
    processes_.push_back(std::move(process));
    return raw;
}

bool X11TestSession::waitUntil(const std::function<bool()>& condition,
                               std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        QThread::msleep(20);
    }
    return true;
}

bool X11TestSession::start(QString* error) {
    // A display number no other server holds; parallel runs pick different ones.
    const int first = 100 + static_cast<int>(::getpid() % 400);
    for (int attempt = 0; attempt < 40 && !connection_; ++attempt) {
        const int number = first + attempt;
        if (QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(number)) ||
            QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number))) {
            continue;
        }
        display_ = QStringLiteral(":%1").arg(number);
        QProcess* server =
            launch("Xvfb", {display_, "-screen", "0",
                            QStringLiteral("%1x%2x24").arg(options_.width).arg(options_.height),
                            "-nolisten", "tcp", "-noreset"});
        if (!server->waitForStarted(5000)) {
            *error = QStringLiteral("Xvfb did not start: %1").arg(server->errorString());
            return false;
        }
        auto connection = std::make_unique<Connection>();
        const bool up = waitUntil([&] {
            if (server->state() == QProcess::NotRunning) {
                return true; // lost the race for this display; try the next one
            }
            xcb_connection_t* c = xcb_connect(display_.toLatin1().constData(), nullptr);
            if (xcb_connection_has_error(c)) {
                xcb_disconnect(c);
                return false;
            }
            connection->c = c;
            connection->root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
            return true;
        });
        if (up && connection->c) {
            connection_ = std::move(connection);
        }
    }
    if (!connection_) {
        *error = "no free display for Xvfb";
        return false;
    }
    if (options_.twoMonitors) {
        const int half = options_.width / 2;
        const QString size = QStringLiteral("%1/254x%2/286").arg(half).arg(options_.height);
        if (!run("xrandr", {"--setmonitor", "LEFT", size + "+0+0", "screen"}) ||
            !run("xrandr",
                 {"--setmonitor", "RIGHT", size + QStringLiteral("+%1+0").arg(half), "none"})) {
            *error = "xrandr could not split the screen into two monitors";
            return false;
        }
    }
    if (options_.windowManager) {
        QProcess* wm = launch("openbox", {"--sm-disable"});
        // openbox announces itself before it manages windows; its work area comes after.
        if (!wm->waitForStarted(5000) || !waitUntil([&] {
                return wm->state() == QProcess::Running &&
                       rootCardinals("_NET_WORKAREA").size() >= 4;
            })) {
            *error = "openbox did not publish a work area";
            return false;
        }
    }
    if (options_.compositor) {
        QProcess* compositor = launch("xcompmgr", {});
        if (!compositor->waitForStarted(5000) ||
            !waitUntil([&] { return selectionOwned("_NET_WM_CM_S0"); })) {
            *error = "xcompmgr did not take the compositing selection";
            return false;
        }
    }
    if (options_.trayHost) {
        QProcess* tray =
            launch("trayer", {"--edge", "bottom", "--align", "right", "--widthtype", "request"});
        if (!tray->waitForStarted(5000) ||
            !waitUntil([&] { return selectionOwned("_NET_SYSTEM_TRAY_S0"); })) {
            *error = "trayer did not take the system tray selection";
            return false;
        }
    }
    return true;
}

bool X11TestSession::selectionOwned(const char* selection) const {
    if (!connection_) {
        return false;
    }
    xcb_connection_t* c = connection_->c;
    auto* reply = xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, internAtom(c, selection)), nullptr);
    const bool owned = reply && reply->owner != XCB_NONE;
    std::free(reply);
    return owned;
}

QProcess* X11TestSession::startProcess(const QString& program, const QStringList& arguments,
                                       const QProcessEnvironment& extra) {
    return launch(program, arguments, extra, false);
}

std::uint32_t X11TestSession::activeWindow() const {
    const auto active = rootCardinals("_NET_ACTIVE_WINDOW");
    return active.empty() ? 0 : active.front();
}

bool X11TestSession::activate(std::uint32_t window) {
    return run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"),
                                           QStringLiteral("--sync"), QString::number(window)}) &&
           waitUntil([&] { return activeWindow() == window; });
}

QStringList X11TestSession::visibleWindows(const QString& className, const QString& name) {
    QString output;
    run(QStringLiteral("xdotool"),
        name.isEmpty() ? QStringList{QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                     QStringLiteral("--classname"), className}
                       : QStringList{QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                     QStringLiteral("--name"), name},
        &output);
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

std::vector<std::uint32_t> X11TestSession::rootCardinals(const char* property) const {
    std::vector<std::uint32_t> values;
    if (!connection_) {
        return values;
    }
    xcb_connection_t* c = connection_->c;
    auto* reply = xcb_get_property_reply(
        c,
        xcb_get_property(c, 0, connection_->root, internAtom(c, property), XCB_ATOM_ANY, 0, 4096),
        nullptr);
    if (reply && reply->format == 32) {
        const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
        values.assign(data, data + xcb_get_property_value_length(reply) / 4);
    }
    std::free(reply);
    return values;
}

std::vector<std::uint32_t> X11TestSession::clientList() const {
    return rootCardinals("_NET_CLIENT_LIST");
}

std::optional<std::uint32_t>
X11TestSession::startClient(const QString& program, const QStringList& arguments, QString* error) {
    const auto before = clientList();
    QProcess* client = launch(program, arguments);
    if (!client->waitForStarted(5000)) {
        *error = QStringLiteral("%1 did not start: %2").arg(program, client->errorString());
        return std::nullopt;
    }
    std::optional<std::uint32_t> window;
    const bool listed = waitUntil([&] {
        if (client->state() == QProcess::NotRunning) {
            return true;
        }
        for (const auto id : clientList()) {
            if (std::find(before.begin(), before.end(), id) == before.end()) {
                window = id;
                return true;
            }
        }
        return false;
    });
    if (!listed || !window) {
        *error = QStringLiteral("%1 never appeared in _NET_CLIENT_LIST").arg(program);
        return std::nullopt;
    }
    return window;
}

bool X11TestSession::run(const QString& program, const QStringList& arguments, QString* output) {
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(program, arguments);
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished(1000);
        return false;
    }
    if (output) {
        *output = QString::fromLocal8Bit(process.readAllStandardOutput());
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QString X11AgentRun::configHome() const {
    return home_.filePath(QStringLiteral("config"));
}

QString X11AgentRun::autostartDirectory() const {
    return home_.filePath(QStringLiteral("config/autostart"));
}

bool X11AgentRun::start(const QString& program, QString* output) {
    QProcessEnvironment env;
    env.insert("XDG_CONFIG_HOME", home_.filePath(QStringLiteral("config")));
    env.insert("XDG_STATE_HOME", home_.filePath(QStringLiteral("state")));
    process_ = session_.startProcess(program, {}, env);
    if (!process_->waitForStarted(5000)) {
        return false;
    }
    return X11TestSession::waitUntil(
        [&] {
            process_->waitForReadyRead(50);
            *output += QString::fromUtf8(process_->readAllStandardError());
            return output->contains(QStringLiteral("ready in"));
        },
        std::chrono::seconds(20));
}

QString X11AgentRun::logText() const {
    QFile file(home_.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool X11AgentRun::waitForLog(const QString& line, int before,
                             std::chrono::milliseconds timeout) const {
    return X11TestSession::waitUntil([&] { return logCount(line) > before; }, timeout);
}

bool X11AgentRun::quit() {
    if (!process_ || process_->state() != QProcess::Running) {
        return false;
    }
    process_->terminate();
    return process_->waitForFinished(10000) && process_->exitStatus() == QProcess::NormalExit &&
           process_->exitCode() == 0 && logText().contains(QStringLiteral("Paneforge quitting"));
}

int runWithX11Session(int argc, char** argv, X11TestSession::Options options,
                      const std::function<int(X11TestSession&)>& body) {
    X11TestSession session(options);
    QString error;
    if (!session.start(&error)) {
        qCritical("could not start the X11 test session: %s", qPrintable(error));
        return 1;
    }
    qputenv("DISPLAY", session.display().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication app(argc, argv);
    return body(session);
}
