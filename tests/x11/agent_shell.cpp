// The real agent's shell under Xvfb, openbox and a tray host, on two monitors: its global hot keys
// pressed with xdotool, its tray menu opened with a click and walked with the keyboard, its about
// window.

#include "core/config/config_store.h"
#include "core/policies/display_cycle.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

using namespace paneforge;

namespace {

// Key codes are macOS virtual key codes: M is 46, D is 2.
const HotkeyDefinition kMoveHotkey{46, modifier_bits::kControl | modifier_bits::kOption};
// L is 37: the layout selector.
const HotkeyDefinition kSelectorHotkey{37, modifier_bits::kControl | modifier_bits::kOption};
// Super+D: openbox's own "show the desktop".
const HotkeyDefinition kTakenHotkey{2, modifier_bits::kCommand};

bool near(const DesktopRect& a, const DesktopRect& b, double tolerance) {
    return std::abs(a.minX() - b.minX()) <= 2 && std::abs(a.maxY() - b.maxY()) <= 2 &&
           std::abs(a.width() - b.width()) <= tolerance &&
           std::abs(a.height() - b.height()) <= tolerance;
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
    void restoredBackupReachesTheRunningAgent();
    void restoreFromTheMenuShowsThePreviewFirst();
    void trayMenuRowsReachTheirFeatures();
    void aboutWindowTakesTheKeyboard();
    void layoutSelectorTakesTheKeyboardAndPicks();
    void cleanupTestCase();

private:
    bool xdotool(const QStringList& arguments, QString* output = nullptr) {
        return session_.run("xdotool", arguments, output);
    }
    // Paneforge's mapped windows: the tray icon, and its menus or windows while they are open.
    QStringList visibleAgentWindows(const QString& name = {}) {
        return session_.visibleWindows("paneforge", name);
    }
    std::uint32_t activeWindow() const { return session_.activeWindow(); }
    bool activate(std::uint32_t window) { return session_.activate(window); }
    // Clicks the tray icon and walks the menu with `keys` ("Down Right Return").
    bool chooseFromTrayMenu(const QString& keys);
    // The command line with the agent's configuration folder; its exit code, or -1.
    int paneforge(const QStringList& arguments) {
        QProcess cli;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", agent_.configHome());
        cli.setProcessEnvironment(env);
        cli.start(QStringLiteral(PANEFORGE_AGENT), arguments);
        return cli.waitForFinished(10000) && cli.exitStatus() == QProcess::NormalExit
                   ? cli.exitCode()
                   : -1;
    }
    QByteArray configBytes() {
        QFile file(ConfigStore(LoggerFactory::makeLogger("Test"), [this] {
                       return agent_.configHome();
                   }).getConfigPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    std::optional<DesktopRect> frame(std::uint32_t window) {
        return windows_.frame(X11WindowService::wrap(window));
    }

    ConfigStore store() {
        return ConfigStore(LoggerFactory::makeLogger("Test"),
                           [this] { return agent_.configHome(); });
    }
    QString activeLayout() {
        return store().loadConfig().displays().at(leftDisplay_).activeLayoutId();
    }

    X11TestSession& session_;
    X11AgentRun agent_;
    QString leftDisplay_;
    X11Connection connection_;
    X11DisplayServices displays_{connection_};
    ManualScheduler scheduler_;
    X11WindowService windows_{connection_, scheduler_, [](const QString&) {}};
    std::uint32_t xterm_ = 0;
    QString trayIcon_;
    QString menu_;
};

bool AgentShellTest::chooseFromTrayMenu(const QString& keys) {
    // Qt keeps the menu's window and maps it again: wait until the last opening has closed.
    if (!menu_.isEmpty() &&
        !X11TestSession::waitUntil([&] { return !visibleAgentWindows().contains(menu_); })) {
        return false;
    }
    const QStringList before = visibleAgentWindows();
    return xdotool({"mousemove", "--window", trayIcon_, "11", "12", "click", "1"}) &&
           X11TestSession::waitUntil([&] {
               for (const QString& window : visibleAgentWindows()) {
                   if (!before.contains(window)) {
                       menu_ = window;
                       return true;
                   }
               }
               return false;
           }) &&
           xdotool(QStringList{"key"} + keys.split(' '));
}

void AgentShellTest::initTestCase() {
    QVERIFY(connection_.isValid());
    QVERIFY(
        X11TestSession::waitUntil([this] { return displays_.getActiveDisplays().size() == 2; }));
    // Three layouts on the left monitor, the first one active.
    leftDisplay_ = displays_.getIdentifier(*displays_.getDisplayId({10, 10})).stableId();
    std::vector<GridDefinition> layouts;
    for (const char* id : {"halves", "thirds", "quarters"}) {
        layouts.emplace_back(id, QString(id).toUpper(), std::vector<double>{0.5},
                             std::vector<double>{});
    }
    DisplayLayoutsMap displays;
    displays.insert_or_assign(leftDisplay_, DisplayLayouts("halves", layouts));
    store().saveConfig(PaneforgeConfig::makeDefault()
                           .copying(displays)
                           .withOpenLayoutSelectorHotkey(kSelectorHotkey)
                           .withMoveToNextDisplayHotkey(kMoveHotkey)
                           .withOpenPreferencesHotkey(kTakenHotkey)
                           .withLaunchAtLogin(true)
                           .withHasCompletedQuickStart(true));
    QString output;
    QVERIFY2(agent_.start(QStringLiteral(PANEFORGE_AGENT), &output), qPrintable(output));
    QVERIFY2(output.contains("icon shown"), qPrintable(output));
    QVERIFY(X11TestSession::waitUntil([&] { return visibleAgentWindows().size() == 1; }));
    trayIcon_ = visibleAgentWindows().front();

    QString error;
    const auto xterm = session_.startClient("xterm", {"-geometry", "60x20+100+150"}, &error);
    QVERIFY2(xterm, qPrintable(error));
    xterm_ = *xterm;
    QVERIFY(X11TestSession::waitUntil([this] { return frame(xterm_).has_value(); }));
}

void AgentShellTest::hotkeysRegisterExceptTheWindowManagers() {
    const QString log = agent_.logText();
    QVERIFY2(log.contains("HotkeyManager.register id=4 keyCode=46 modifiers=6144"),
             qPrintable(log));
    QVERIFY(log.contains("OpenPreferences hotkey: keyCode=2 modifiers=256"));
    QVERIFY(log.contains("RegisterEventHotKey failed: BadAccess (id=2)"));
    QVERIFY(!log.contains("(id=4)"));
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

    const int before = agent_.logCount("X11WindowService.setFrame ");
    QVERIFY(xdotool({"key", "ctrl+alt+m"}));
    QVERIFY2(agent_.waitForLog("X11WindowService.setFrame ", before), qPrintable(agent_.logText()));
    // xterm sizes itself in whole character cells.
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const auto now = frame(xterm_);
                 return now && near(*now, expected, 14);
             }),
             qPrintable(agent_.logText()));

    // The same key again: from the last display back to the first.
    QVERIFY(xdotool({"key", "ctrl+alt+m"}));
    QVERIFY(X11TestSession::waitUntil([&] {
        const auto now = frame(xterm_);
        return now && displays_.getDisplayId({now->midX(), now->midY()}) == left;
    }));
}

void AgentShellTest::restoredBackupReachesTheRunningAgent() {
    const QTemporaryDir folder;
    const QString backup = folder.filePath("backup.json");
    const QByteArray original = configBytes();
    QCOMPARE(paneforge({"backup", "export", backup}), 0);

    // Another program changes the move hot key to Ctrl+Alt+N: the agent follows the file.
    const QString newKey = "HotkeyManager.register id=4 keyCode=45 ";
    int before = agent_.logCount(newKey);
    const ConfigStore store(LoggerFactory::makeLogger("Test"),
                            [this] { return agent_.configHome(); });
    store.saveConfig(store.loadConfig().withMoveToNextDisplayHotkey(
        HotkeyDefinition{45, kMoveHotkey.modifiers}));
    QVERIFY2(agent_.waitForLog(newKey, before), qPrintable(agent_.logText()));

    // The restore brings back the file byte for byte, and the agent the old hot key, which works.
    const QString oldKey = "HotkeyManager.register id=4 keyCode=46 ";
    before = agent_.logCount(oldKey);
    QCOMPARE(paneforge({"backup", "restore", backup, "--yes"}), 0);
    QCOMPARE(configBytes(), original);
    QVERIFY2(agent_.waitForLog(oldKey, before), qPrintable(agent_.logText()));
    QVERIFY(activate(xterm_));
    const auto start = frame(xterm_);
    QVERIFY(xdotool({"key", "ctrl+alt+m"}));
    QVERIFY(X11TestSession::waitUntil([&] {
        const auto now = frame(xterm_);
        return now && start && std::abs(now->minX() - start->minX()) > 500;
    }));
}

void AgentShellTest::restoreFromTheMenuShowsThePreviewFirst() {
    const QTemporaryDir folder;
    const QString backup = folder.filePath("backup.json");
    const QByteArray original = configBytes();
    QCOMPARE(paneforge({"backup", "export", backup}), 0);
    const ConfigStore store(LoggerFactory::makeLogger("Test"),
                            [this] { return agent_.configHome(); });
    store.saveConfig(store.loadConfig().withCellMarginPoints(30));
    const QByteArray changed = configBytes();

    // "Restore Settings…", sixth from the bottom: the file dialog has the keyboard, so the file's
    // name can be typed; then the preview has it, and Return restores.
    const auto activeWindowNamed = [&](const QString& title) {
        return X11TestSession::waitUntil([&] {
            const QStringList windows = visibleAgentWindows(title);
            return windows.size() == 1 && activeWindow() == windows.front().toUInt();
        });
    };
    QVERIFY(activate(xterm_));
    QVERIFY(chooseFromTrayMenu("Up Up Up Up Up Up Return"));
    QVERIFY2(activeWindowNamed("^Restore Settings$"), qPrintable(agent_.logText()));
    QVERIFY(xdotool({"type", backup}) && xdotool({"key", "Return"}));
    QVERIFY2(activeWindowNamed("^Restore Settings\\?$"), qPrintable(agent_.logText()));
    QCOMPARE(configBytes(), changed);
    QVERIFY(xdotool({"key", "Return"}));
    QVERIFY(X11TestSession::waitUntil([&] { return configBytes() == original; }));
}

void AgentShellTest::trayMenuRowsReachTheirFeatures() {
    // Rows counted from the top: the fifth, "Zone Editor…", opens its submenu of displays; the
    // editor takes the keyboard, and Escape closes it.
    const int before = agent_.logCount("GridEditorController.showEditor ");
    QVERIFY(chooseFromTrayMenu("Down Down Down Down Down Right Down Return"));
    QVERIFY2(agent_.waitForLog("GridEditorController.showEditor ", before),
             qPrintable(agent_.logText()));
    const auto displays = displays_.getActiveDisplays();
    QVERIFY(agent_.logText().contains(QString("showEditor displayId=%1 ").arg(displays.at(1))));
    QStringList editor;
    QVERIFY(X11TestSession::waitUntil([&] {
        editor = visibleAgentWindows("^Paneforge Zone Editor$");
        return editor.size() == 1 && activeWindow() == editor.front().toUInt();
    }));
    QVERIFY(xdotool({"key", "Escape"}));
    QVERIFY(X11TestSession::waitUntil(
        [&] { return visibleAgentWindows("^Paneforge Zone Editor$").isEmpty(); }));

    // The fourth row moves the focused window, like its hot key.
    QVERIFY(activate(xterm_));
    const auto start = frame(xterm_);
    QVERIFY(chooseFromTrayMenu("Down Down Down Down Return"));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const auto now = frame(xterm_);
                 return now && std::abs(now->minX() - start->minX()) > 500;
             }),
             qPrintable(agent_.logText()));

    // Counted from the bottom: "Reveal Log File", the fourth, names the log it shows.
    const int reveals = agent_.logCount("ApplicationController.revealLogFile path=");
    QVERIFY(chooseFromTrayMenu("Up Up Up Up Return"));
    QVERIFY(agent_.waitForLog("ApplicationController.revealLogFile path=", reveals));
    QVERIFY(agent_.logText().contains("/state/Paneforge/Paneforge.log"));
}

void AgentShellTest::aboutWindowTakesTheKeyboard() {
    // Twice: shown anew, then brought back from behind another application's window.
    for (int round = 0; round < 2; ++round) {
        QVERIFY(activate(xterm_));
        QVERIFY(chooseFromTrayMenu("Up Up Return"));
        QStringList about;
        QVERIFY(X11TestSession::waitUntil([&] {
            about = visibleAgentWindows("^About Paneforge$");
            return about.size() == 1;
        }));
        QVERIFY2(
            X11TestSession::waitUntil([&] { return activeWindow() == about.front().toUInt(); }),
            qPrintable(QString("active window %1, about window %2")
                           .arg(activeWindow())
                           .arg(about.front())));
    }
    // It has the keyboard: Escape closes it.
    QVERIFY(xdotool({"key", "Escape"}));
    QVERIFY(X11TestSession::waitUntil(
        [&] { return visibleAgentWindows("^About Paneforge$").isEmpty(); }));
}

void AgentShellTest::layoutSelectorTakesTheKeyboardAndPicks() {
    QVERIFY(xdotool({"mousemove", "400", "400"}));
    // Return picks the card the arrow moved to; Escape closes without a change.
    for (const auto& [keys, expected] :
         {std::pair{"Right Return", "thirds"}, std::pair{"Escape", "thirds"}}) {
        QVERIFY(activate(xterm_));
        QVERIFY(xdotool({"key", "ctrl+alt+l"}));
        QStringList selector;
        QVERIFY2(X11TestSession::waitUntil([&] {
                     selector = visibleAgentWindows("^Switch Layout$");
                     return selector.size() == 1 && activeWindow() == selector.front().toUInt();
                 }),
                 qPrintable(QString("active window %1, selector %2")
                                .arg(activeWindow())
                                .arg(selector.join(' '))));
        QVERIFY(xdotool(QStringList{"key"} + QString(keys).split(' ')));
        QVERIFY(X11TestSession::waitUntil(
            [&] { return visibleAgentWindows("^Switch Layout$").isEmpty(); }));
        QCOMPARE(activeLayout(), QString(expected));
    }
    QVERIFY(agent_.logText().contains("LayoutSelectorController.pick display=" + leftDisplay_ +
                                      " id=thirds"));
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
