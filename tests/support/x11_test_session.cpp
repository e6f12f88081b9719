#include "x11_test_session.h"

#include "platform/x11/xcb_client.h"

#include <QGuiApplication>
#include <QThread>
#include <csignal>
#include <sys/prctl.h>

X11TestSession::~X11TestSession() {
    connection_.reset();
    for (auto it = processes_.rbegin(); it != processes_.rend(); ++it) { // the server last
        (*it)->terminate();
        if (!(*it)->waitForFinished(3000)) {
            (*it)->kill();
            (*it)->waitForFinished(3000);
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
                                 const QProcessEnvironment& extra, bool forwardErrors,
                                 bool keepOutput) {
    auto& process = processes_.emplace_back(std::make_unique<QProcess>());
    QProcessEnvironment env = environment();
    env.insert(extra);
    process->setProcessEnvironment(env);
    if (forwardErrors) {
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }
    if (!keepOutput) {
        process->setStandardOutputFile(QProcess::nullDevice());
    }
    // The server, window manager and clients must not outlive a test that dies without running
    // its destructors (a crash, a sanitizer report): they would hold the test's output open.
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process->start(program, arguments);
    return process.get();
}

bool X11TestSession::waitUntil(const std::function<bool()>& condition,
                               std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (; !condition(); QThread::msleep(20)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
    }
    return true;
}

bool X11TestSession::start(QString* error) {
    // Xvfb names a free display once it accepts connections.
    QProcess* server = launch("Xvfb",
                              {"-displayfd", "1", "-screen", "0",
                               QStringLiteral("%1x%2x24").arg(options_.width).arg(options_.height),
                               "-nolisten", "tcp", "-noreset"},
                              {}, true, true);
    if (server->waitForStarted(5000) && waitUntil([&] {
            server->waitForReadyRead(50);
            return server->canReadLine();
        })) {
        display_ = QStringLiteral(":") + QString::fromLatin1(server->readLine().trimmed());
        qputenv("DISPLAY", display_.toLatin1());
        connection_ = std::make_unique<paneforge::X11Connection>();
    }
    if (!connection_ || !connection_->isValid()) {
        *error = QStringLiteral("Xvfb did not start: %1").arg(server->errorString());
        return false;
    }
    const int half = options_.width / 2;
    const QString size = QStringLiteral("%1/254x%2/286").arg(half).arg(options_.height);
    if (options_.twoMonitors &&
        (!run("xrandr", {"--setmonitor", "LEFT", size + "+0+0", "screen"}) ||
         !run("xrandr",
              {"--setmonitor", "RIGHT", size + QStringLiteral("+%1+0").arg(half), "none"}))) {
        *error = "xrandr could not split the screen into two monitors";
        return false;
    }
    // Each helper is ready once it owns its selection; openbox announces itself before it
    // manages windows, so for it the work area it publishes after that counts.
    const struct {
        bool wanted;
        QString program;
        QStringList arguments;
        const char* selection;
    } helpers[] = {
        {true, "openbox", {"--sm-disable"}, nullptr},
        {options_.compositor, "xcompmgr", {}, "_NET_WM_CM_S0"},
        {options_.trayHost,
         "trayer",
         {"--edge", "bottom", "--align", "right", "--widthtype", "request"},
         "_NET_SYSTEM_TRAY_S0"},
    };
    for (const auto& helper : helpers) {
        QProcess* process = helper.wanted ? launch(helper.program, helper.arguments) : nullptr;
        if (process && (!process->waitForStarted(5000) || !waitUntil([&] {
                return process->state() == QProcess::Running &&
                       (helper.selection ? selectionOwned(helper.selection)
                                         : rootCardinals("_NET_WORKAREA").size() >= 4);
            }))) {
            *error = helper.program + " did not take " +
                     (helper.selection ? helper.selection : "the work area");
            return false;
        }
    }
    return true;
}

bool X11TestSession::selectionOwned(const char* selection) const {
    xcb_connection_t* c = connection_->raw();
    const auto reply = paneforge::owned(xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, connection_->atom(selection)), nullptr));
    return reply && reply->owner != XCB_NONE;
}

QStringList X11TestSession::visibleWindows(const QString& className, const QString& name) {
    QString output;
    run("xdotool",
        {"search", "--onlyvisible", name.isEmpty() ? "--classname" : "--name",
         name.isEmpty() ? className : name},
        &output);
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QPoint X11TestSession::pointer() {
    QString output; // "x:123 y:456 screen:0 window:789"
    run("xdotool", {"getmouselocation"}, &output);
    const QStringList parts = output.split(QLatin1Char(' '));
    return QPoint(parts.value(0).mid(2).toInt(), parts.value(1).mid(2).toInt());
}

std::optional<std::uint32_t>
X11TestSession::startClient(const QString& program, const QStringList& arguments, QString* error) {
    const auto before = clientList();
    QProcess* client = launch(program, arguments);
    std::optional<std::uint32_t> window;
    waitUntil([&] {
        for (const auto id : clientList()) {
            window = std::ranges::find(before, id) == before.end() ? id : window;
        }
        return window || client->state() == QProcess::NotRunning;
    });
    if (!window) {
        *error = QStringLiteral("%1 never appeared in _NET_CLIENT_LIST (%2)")
                     .arg(program, client->errorString());
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

int runWithX11Session(int argc, char** argv, X11TestSession::Options options,
                      const std::function<int(X11TestSession&)>& body) {
    X11TestSession session(options);
    if (QString error; !session.start(&error)) {
        qCritical("could not start the X11 test session: %s", qPrintable(error));
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication app(argc, argv);
    return body(session);
}
