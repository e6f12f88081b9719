// The real agent's shell under Xvfb, openbox and a tray host, on two monitors: its global hot keys
// pressed with xdotool, its tray menu opened with a click and walked with the keyboard, its about
// window, and the command line.

#include "core/config/config_store.h"
#include "core/policies/display_cycle.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QDir>
#include <QTest>
#include <cmath>

using namespace paneforge;

namespace {

// Key codes are macOS virtual key codes: M is 46, D is 2.
const HotkeyDefinition kMoveHotkey{46, modifier_bits::kControl | modifier_bits::kOption};
// Super+D: openbox's own "show the desktop".
const HotkeyDefinition kTakenHotkey{2, modifier_bits::kCommand};

bool near(const DesktopRect& a, const DesktopRect& b, double tolerance) {
    return std::abs(a.minX() - b.minX()) <= 2 && std::abs(a.maxY() - b.maxY()) <= 2 &&
           std::abs(a.width() - b.width()) <= tolerance &&
           std::abs(a.height() - b.height()) <= tolerance;
}

QString describe(const std::optional<DesktopRect>& rect) {
    return rect ? QStringLiteral("(%1,%2 %3x%4)")
                      .arg(rect->minX())
                      .arg(rect->minY())
                      .arg(rect->width())
                      .arg(rect->height())
                : QStringLiteral("none");
}

} // namespace

class AgentShellTest : public QObject {
    Q_OBJECT

public:
    explicit AgentShellTest(X11TestSession& session)
        : session_(session)
        , agent_(session) {}

private Q_SLOTS:
    void initTestCase();
    void hotkeysRegisterExceptTheWindowManagers();
    void moveHotkeyMovesTheFocusedWindow();
    void trayMenuRowsReachTheirFeatures();
    void aboutWindowTakesTheKeyboard();
    void commandLine_data();
    void commandLine();
    void cleanupTestCase();

private:
    bool xdotool(const QStringList& arguments, QString* output = nullptr) {
        return session_.run(QStringLiteral("xdotool"), arguments, output);
    }
    // Paneforge's mapped windows: the tray icon, and its menus or windows while they are open.
    QStringList visibleAgentWindows(const QString& name = {}) {
        QString output;
        xdotool(name.isEmpty()
                    ? QStringList{QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                  QStringLiteral("--classname"), QStringLiteral("paneforge")}
                    : QStringList{QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                  QStringLiteral("--name"), name},
                &output);
        return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    std::uint32_t activeWindow() const {
        const auto active = session_.rootCardinals("_NET_ACTIVE_WINDOW");
        return active.empty() ? 0 : active.front();
    }
    bool activate(std::uint32_t window) {
        return xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"),
                        QString::number(window)}) &&
               X11TestSession::waitUntil([&] { return activeWindow() == window; });
    }
    // Clicks the tray icon and walks the menu with `keys`.
    bool chooseFromTrayMenu(const QStringList& keys);
    std::optional<DesktopRect> frame(std::uint32_t window) {
        return windows_.frame(X11WindowService::wrap(window));
    }

    X11TestSession& session_;
    X11AgentRun agent_;
    X11Connection connection_;
    X11DisplayServices displays_{connection_};
    ManualScheduler scheduler_;
    X11WindowService windows_{connection_, scheduler_, [](const QString&) {}};
    std::uint32_t xterm_ = 0;
    QString trayIcon_;
    QString menu_;
};

bool AgentShellTest::chooseFromTrayMenu(const QStringList& keys) {
    QString geometry;
    if (!xdotool({QStringLiteral("getwindowgeometry"), trayIcon_}, &geometry)) {
        return false;
    }
    // "Position: 1877,1053 (screen: 0)\n  Geometry: 22x24"
    const QString position = geometry.section(QStringLiteral("Position: "), 1).section(' ', 0, 0);
    const QString size = geometry.section(QStringLiteral("Geometry: "), 1).trimmed();
    const int x = position.section(',', 0, 0).toInt() + size.section('x', 0, 0).toInt() / 2;
    const int y = position.section(',', 1, 1).toInt() + size.section('x', 1, 1).toInt() / 2;
    // Qt keeps the menu's window and maps it again: wait until the last opening has closed.
    if (!menu_.isEmpty() &&
        !X11TestSession::waitUntil([&] { return !visibleAgentWindows().contains(menu_); })) {
        return false;
    }
    const QStringList before = visibleAgentWindows();
    if (!xdotool({QStringLiteral("mousemove"), QString::number(x), QString::number(y),
                  QStringLiteral("click"), QStringLiteral("1")}) ||
        !X11TestSession::waitUntil([&] {
            for (const QString& window : visibleAgentWindows()) {
                if (!before.contains(window)) {
                    menu_ = window;
                    return true;
                }
            }
            return false;
        })) {
        return false;
    }
    return xdotool(QStringList{QStringLiteral("key")} + keys);
}

void AgentShellTest::initTestCase() {
    QVERIFY(connection_.isValid());
    QVERIFY(
        X11TestSession::waitUntil([this] { return displays_.getActiveDisplays().size() == 2; }));
    ConfigStore(LoggerFactory::makeLogger(QStringLiteral("Test")),
                [this] { return agent_.configHome(); })
        .saveConfig(PaneforgeConfig::makeDefault()
                        .withMoveToNextDisplayHotkey(kMoveHotkey)
                        .withOpenPreferencesHotkey(kTakenHotkey)
                        .withLaunchAtLogin(true));
    QString output;
    QVERIFY2(agent_.start(QStringLiteral(PANEFORGE_AGENT), &output), qPrintable(output));
    QVERIFY2(output.contains(QStringLiteral("icon shown")), qPrintable(output));
    QVERIFY(X11TestSession::waitUntil([&] { return visibleAgentWindows().size() == 1; }));
    trayIcon_ = visibleAgentWindows().front();

    QString error;
    const auto xterm = session_.startClient(
        QStringLiteral("xterm"), {QStringLiteral("-geometry"), QStringLiteral("60x20+100+150")},
        &error);
    QVERIFY2(xterm, qPrintable(error));
    xterm_ = *xterm;
    QVERIFY(X11TestSession::waitUntil([this] { return frame(xterm_).has_value(); }));
}

void AgentShellTest::hotkeysRegisterExceptTheWindowManagers() {
    const QString log = agent_.logText();
    QVERIFY2(log.contains(QStringLiteral("HotkeyManager.register id=4 keyCode=46 modifiers=6144")),
             qPrintable(log));
    QVERIFY(log.contains(QStringLiteral("OpenPreferences hotkey: keyCode=2 modifiers=256")));
    QVERIFY(log.contains(QStringLiteral("RegisterEventHotKey failed: BadAccess (id=2)")));
    QVERIFY(!log.contains(QStringLiteral("(id=4)")));
    // A build run from its build tree never writes an autostart entry, whatever the setting.
    QVERIFY(!QDir(agent_.autostartDirectory()).exists());
}

void AgentShellTest::moveHotkeyMovesTheFocusedWindow() {
    QVERIFY(activate(xterm_));
    const auto start = frame(xterm_);
    QVERIFY(start);
    const auto left = displays_.getDisplayId({start->midX(), start->midY()});
    const auto right = displays_.getDisplayId({1500, 500});
    QVERIFY(left && right && *left != *right);
    const DesktopRect expected = WindowDisplayMapper::mappedFrame(
        *start, *displays_.getVisibleFrame(*left), *displays_.getVisibleFrame(*right));

    const int before = agent_.logCount(QStringLiteral("X11WindowService.setFrame "));
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+m")}));
    QVERIFY2(agent_.waitForLog(QStringLiteral("X11WindowService.setFrame "), before),
             qPrintable(agent_.logText()));
    // xterm sizes itself in whole character cells.
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const auto now = frame(xterm_);
                 return now && near(*now, expected, 14);
             }),
             qPrintable(describe(frame(xterm_)) + " expected " + describe(expected)));

    // The same key again: from the last display back to the first.
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+m")}));
    QVERIFY(X11TestSession::waitUntil([&] {
        const auto now = frame(xterm_);
        return now && displays_.getDisplayId({now->midX(), now->midY()}) == left;
    }));
}

void AgentShellTest::trayMenuRowsReachTheirFeatures() {
    // Rows counted from the top: the fifth, "Zone Editor…", opens its submenu of displays.
    const int before = agent_.logCount(QStringLiteral("StandInZoneEditorController.showEditor "));
    QVERIFY(
        chooseFromTrayMenu({QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Down"),
                            QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Right"),
                            QStringLiteral("Down"), QStringLiteral("Return")}));
    QVERIFY2(agent_.waitForLog(QStringLiteral("StandInZoneEditorController.showEditor "), before),
             qPrintable(agent_.logText()));
    const auto displays = displays_.getActiveDisplays();
    QVERIFY(
        agent_.logText().contains(QStringLiteral("showEditor displayId=%1:").arg(displays.at(1))));

    // The fourth row moves the focused window, like its hot key.
    QVERIFY(activate(xterm_));
    const auto start = frame(xterm_);
    QVERIFY(
        chooseFromTrayMenu({QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Down"),
                            QStringLiteral("Down"), QStringLiteral("Return")}));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const auto now = frame(xterm_);
                 return now && std::abs(now->minX() - start->minX()) > 500;
             }),
             qPrintable(describe(frame(xterm_))));

    // Counted from the bottom: "Reveal Log File", the fourth, names the log it shows.
    const int reveals =
        agent_.logCount(QStringLiteral("ApplicationController.revealLogFile path="));
    QVERIFY(chooseFromTrayMenu({QStringLiteral("Up"), QStringLiteral("Up"), QStringLiteral("Up"),
                                QStringLiteral("Up"), QStringLiteral("Return")}));
    QVERIFY(
        agent_.waitForLog(QStringLiteral("ApplicationController.revealLogFile path="), reveals));
    QVERIFY(agent_.logText().contains(QStringLiteral("/state/Paneforge/Paneforge.log")));
}

void AgentShellTest::aboutWindowTakesTheKeyboard() {
    // Twice: shown anew, then brought back from behind another application's window.
    for (int round = 0; round < 2; ++round) {
        QVERIFY(activate(xterm_));
        QVERIFY(chooseFromTrayMenu(
            {QStringLiteral("Up"), QStringLiteral("Up"), QStringLiteral("Return")}));
        QStringList about;
        QVERIFY(X11TestSession::waitUntil([&] {
            about = visibleAgentWindows(QStringLiteral("^About Paneforge$"));
            return about.size() == 1;
        }));
        QVERIFY2(
            X11TestSession::waitUntil([&] { return activeWindow() == about.front().toUInt(); }),
            qPrintable(QStringLiteral("active window %1, about window %2")
                           .arg(activeWindow())
                           .arg(about.front())));
    }
    // It has the keyboard: Escape closes it.
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("Escape")}));
    QVERIFY(X11TestSession::waitUntil(
        [&] { return visibleAgentWindows(QStringLiteral("^About Paneforge$")).isEmpty(); }));
}

void AgentShellTest::commandLine_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("expected"); // on standard output for 0, else on standard error
    QTest::newRow("version") << QStringList{"--version"} << 0
                             << QStringLiteral("Paneforge " PANEFORGE_VERSION "\n");
    QTest::newRow("help") << QStringList{"--help"} << 0 << "usage: paneforge";
    QTest::newRow("unknown option")
        << QStringList{"--frobnicate"} << 2 << "unknown option “--frobnicate”";
    QTest::newRow("version with more") << QStringList{"--version", "now"} << 2 << "usage:";
}

void AgentShellTest::commandLine() {
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, expected);
    QProcess command;
    command.start(QStringLiteral(PANEFORGE_AGENT), arguments);
    QVERIFY(command.waitForFinished(10000));
    QCOMPARE(command.exitCode(), exitCode);
    const QString output = QString::fromUtf8(exitCode == 0 ? command.readAllStandardOutput()
                                                           : command.readAllStandardError());
    QVERIFY2(output.contains(expected), qPrintable(output));
}

void AgentShellTest::cleanupTestCase() {
    QVERIFY(agent_.quit());
}

int main(int argc, char** argv) {
    X11TestSession::Options options;
    options.twoMonitors = true;
    options.trayHost = true;
    return runWithX11Session(argc, argv, options, [&](X11TestSession& session) {
        AgentShellTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "agent_shell.moc"
