// The real agent's shell under Xvfb, openbox and a tray host, on two monitors: its global hot keys
// pressed with xdotool, its tray menu opened with a click and walked with the keyboard, its about
// window. Its preferences window, opened by its hot key, has the keyboard; a setting changed with
// the keys lands in the configuration file; a hot key recorded by typing it works at once while
// the old combination no longer does; the hot keys let go of the keyboard while one is recorded;
// hiding the icon hides it; Escape closes the window.

#include "core/policies/display_cycle.h"
#include "x11_agent_test.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

using namespace paneforge;

namespace {

// Key codes are macOS virtual key codes: M is 46 (moves to the next display), N is 45, L is 37 (the
// layout selector), P is 35 (the preferences), D is 2: Super+D is openbox's own "show the desktop".
constexpr std::uint32_t kControlOption = modifier_bits::kControl | modifier_bits::kOption;

// From the margin slider, where the preferences open, Tab reaches the eight snap boxes and then
// the hot key rows' record and clear buttons (tst_preferences_window checks this order).
constexpr int kTabsToRecordMoveHotkey = 8 + 3 * 2 + 1;
// Backwards from the slider: Close, "Restore window size on unsnap", "Hide tray icon".
constexpr int kBackTabsToHideIcon = 3;

const QString kPreferences = QStringLiteral("^Preferences$");
const QString kTriggered = QStringLiteral("HotkeyManager triggered (id=4)");

} // namespace

class AgentShellTest : public X11AgentTest {
    Q_OBJECT

public:
    using X11AgentTest::X11AgentTest;

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(waitForDisplays(2));
        // Three layouts on the left monitor, the first one active.
        leftDisplay_ = displayIdAt({10, 10});
        std::vector<GridDefinition> layouts;
        for (const char* id : {"halves", "thirds", "quarters"}) {
            layouts.emplace_back(id, QString(id).toUpper(), std::vector<double>{0.5},
                                 std::vector<double>{});
        }
        DisplayLayoutsMap displays;
        displays.insert_or_assign(leftDisplay_, DisplayLayouts("halves", layouts));
        QString output;
        QVERIFY(startAgent(PaneforgeConfig::makeDefault()
                               .copying(displays)
                               .withOpenLayoutSelectorHotkey(HotkeyDefinition{37, kControlOption})
                               .withMoveToNextDisplayHotkey(HotkeyDefinition{46, kControlOption})
                               .withOpenEditorHotkey(HotkeyDefinition{2, modifier_bits::kCommand})
                               .withOpenPreferencesHotkey(HotkeyDefinition{35, kControlOption})
                               .withLaunchAtLogin(true)
                               .withHasCompletedQuickStart(true),
                           &output));
        QVERIFY2(output.contains("icon shown"), qPrintable(output));
        QVERIFY(findTrayIcon());
        QVERIFY(startXterm());
    }

    void hotkeysRegisterExceptTheWindowManagers() {
        const QString log = logText();
        QVERIFY2(log.contains("HotkeyManager.register id=4 keyCode=46 modifiers=6144"),
                 qPrintable(log));
        QVERIFY(log.contains("OpenEditor hotkey: keyCode=2 modifiers=256"));
        QVERIFY(log.contains("RegisterEventHotKey failed: BadAccess (id=1)"));
        QVERIFY(!log.contains("(id=4)"));
        // A build run from its build tree never writes an autostart entry, whatever the setting.
        QVERIFY(!QDir(autostartDirectory()).exists());
    }

    void moveHotkeyMovesTheFocusedWindow() {
        const auto start = focusXterm();
        QVERIFY(start);
        const auto left = displays_.getDisplayId({start->midX(), start->midY()});
        const auto right = displays_.getDisplayId({1500, 500});
        QVERIFY(left && right && *left != *right);
        const DesktopRect expected = WindowDisplayMapper::mappedFrame(
            *start, *displays_.getVisibleFrame(*left), *displays_.getVisibleFrame(*right));

        const int before = logCount("X11WindowService.setFrame ");
        QVERIFY(keys("ctrl+alt+m"));
        QVERIFY2(waitForLog("X11WindowService.setFrame ", before), qPrintable(logText()));
        // xterm sizes itself in whole character cells.
        QVERIFY2(X11TestSession::waitUntil([&] {
                     const auto now = frame(xterm_);
                     return now && std::abs(now->minX() - expected.minX()) <= 2 &&
                            std::abs(now->maxY() - expected.maxY()) <= 2 &&
                            std::abs(now->width() - expected.width()) <= 14 &&
                            std::abs(now->height() - expected.height()) <= 14;
                 }),
                 qPrintable(logText()));

        // The same key again: from the last display back to the first.
        const auto moved = frame(xterm_);
        QVERIFY(moved && keys("ctrl+alt+m"));
        QVERIFY(xtermLeaves(*moved));
    }

    void restoredBackupReachesTheRunningAgent() {
        const QTemporaryDir folder;
        const QString backup = folder.filePath("backup.json");
        const QByteArray original = configBytes();
        QCOMPARE(paneforge({"backup", "export", backup}), 0);

        // Another program changes the move hot key to Ctrl+Alt+N: the agent follows the file.
        const QString newKey = "HotkeyManager.register id=4 keyCode=45 ";
        int before = logCount(newKey);
        store().saveConfig(
            store().loadConfig().withMoveToNextDisplayHotkey(HotkeyDefinition{45, kControlOption}));
        QVERIFY2(waitForLog(newKey, before), qPrintable(logText()));

        // The restore brings back the file byte for byte, and the agent the old hot key, which
        // works.
        const QString oldKey = "HotkeyManager.register id=4 keyCode=46 ";
        before = logCount(oldKey);
        QCOMPARE(paneforge({"backup", "restore", backup, "--yes"}), 0);
        QCOMPARE(configBytes(), original);
        QVERIFY2(waitForLog(oldKey, before), qPrintable(logText()));
        const auto start = focusXterm();
        QVERIFY(start);
        QVERIFY(keys("ctrl+alt+m"));
        QVERIFY(xtermLeaves(*start));
    }

    void restoreFromTheMenuShowsThePreviewFirst() {
        const QTemporaryDir folder;
        const QString backup = folder.filePath("backup.json");
        const QByteArray original = configBytes();
        QCOMPARE(paneforge({"backup", "export", backup}), 0);
        store().saveConfig(store().loadConfig().withCellMarginPoints(30));
        const QByteArray changed = configBytes();

        // "Restore Settings…", sixth from the bottom: the file dialog has the keyboard, so the
        // file's name can be typed; then the preview has it, and Return restores.
        QVERIFY(focusXterm());
        QVERIFY(chooseFromTrayMenu("Up Up Up Up Up Up Return"));
        QVERIFY2(waitForKeyboard("^Restore Settings$"), qPrintable(logText()));
        QVERIFY(xdotool({"type", backup}) && keys("Return"));
        QVERIFY2(waitForKeyboard("^Restore Settings\\?$"), qPrintable(logText()));
        QCOMPARE(configBytes(), changed);
        QVERIFY(keys("Return"));
        QVERIFY(X11TestSession::waitUntil([&] { return configBytes() == original; }));
    }

    void trayMenuRowsReachTheirFeatures() {
        // Rows counted from the top: the fifth, "Zone Editor…", opens its submenu of displays; the
        // editor takes the keyboard, and Escape closes it.
        const int before = logCount("GridEditorController.showEditor ");
        QVERIFY(chooseFromTrayMenu("Down Down Down Down Down Right Down Return"));
        QVERIFY2(waitForLog("GridEditorController.showEditor ", before), qPrintable(logText()));
        const auto displays = displays_.getActiveDisplays();
        QVERIFY(logText().contains(QString("showEditor displayId=%1 ").arg(displays.at(1))));
        QVERIFY(waitForKeyboard("^Paneforge Zone Editor$"));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed("^Paneforge Zone Editor$"));

        // The fourth row moves the focused window, like its hot key.
        const auto start = focusXterm();
        QVERIFY(start);
        QVERIFY(chooseFromTrayMenu("Down Down Down Down Return"));
        QVERIFY2(xtermLeaves(*start), qPrintable(logText()));

        // Counted from the bottom: "Reveal Log File", the fourth, names the log it shows.
        const int reveals = logCount("ApplicationController.revealLogFile path=");
        QVERIFY(chooseFromTrayMenu("Up Up Up Up Return"));
        QVERIFY(waitForLog("ApplicationController.revealLogFile path=", reveals));
        QVERIFY(logText().contains("/state/Paneforge/Paneforge.log"));
    }

    void aboutWindowTakesTheKeyboard() {
        // Twice: shown anew, then brought back from behind another application's window.
        for (int round = 0; round < 2; ++round) {
            QVERIFY(focusXterm());
            QVERIFY(chooseFromTrayMenu("Up Up Return"));
            QVERIFY(waitForKeyboard("^About Paneforge$"));
        }
        // It has the keyboard: Escape closes it.
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed("^About Paneforge$"));
    }

    void layoutSelectorTakesTheKeyboardAndPicks() {
        QVERIFY(xdotool({"mousemove", "400", "400"}));
        // Return picks the card the arrow moved to; Escape closes without a change.
        for (const auto& [pressed, expected] :
             {std::pair{"Right Return", "thirds"}, std::pair{"Escape", "thirds"}}) {
            QVERIFY(focusXterm());
            QVERIFY(keys("ctrl+alt+l"));
            QVERIFY(waitForKeyboard("^Switch Layout$"));
            QVERIFY(keys(pressed));
            QVERIFY(waitUntilClosed("^Switch Layout$"));
            QCOMPARE(config().displays().at(leftDisplay_).activeLayoutId(), QString(expected));
        }
        QVERIFY(logText().contains("LayoutSelectorController.pick display=" + leftDisplay_ +
                                   " id=thirds"));
    }

    void hotkeyOpensItWithTheKeyboard() { QVERIFY2(openPreferences(), qPrintable(logText())); }

    void aChangedSettingLandsInTheFile() {
        // The window opens on the margin slider: the arrow key moves it by a point.
        QCOMPARE(config().cellMarginPoints(), 8.0);
        QVERIFY(keys("Right"));
        QVERIFY2(X11TestSession::waitUntil([&] { return config().cellMarginPoints() == 9.0; }),
                 qPrintable(logText()));
    }

    void aRecordedHotkeyWorksAtOnce() {
        const int registered = logCount("HotkeyManager.register id=4 keyCode=45 modifiers=6144");
        QVERIFY2(startRecordingMoveHotkey(), qPrintable(logText()));
        QVERIFY(keys("ctrl+alt+n"));
        QVERIFY2(X11TestSession::waitUntil([&] {
                     return config().moveToNextDisplayHotkey() ==
                            std::optional(HotkeyDefinition{45, kControlOption});
                 }),
                 qPrintable(logText()));
        QVERIFY(waitForLog("HotkeyManager.register id=4 keyCode=45 modifiers=6144", registered));
        // Escape closes the window.
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));

        // The old combination no longer moves the focused window, the new one does. The server
        // handles the two presses in order, so a move by the old one would be logged first.
        QVERIFY(session_.activate(xterm_));
        const auto start = frame(xterm_);
        QVERIFY(start);
        const int before = logCount(kTriggered);
        QVERIFY(keys("ctrl+alt+m ctrl+alt+n"));
        QVERIFY2(waitForLog(kTriggered, before), qPrintable(logText()));
        QVERIFY2(xtermLeaves(*start), qPrintable(logText()));
        QCOMPARE(logCount(kTriggered), before + 1);
    }

    void recordingTakesACombinationTheHotkeysHold() {
        // Ctrl+Alt+N is held by the move hot key; while recording it reaches the window instead.
        QVERIFY(openPreferences());
        const QString recorded =
            QStringLiteral("PreferencesWindowController.recorded slot=4 keyCode=45 modifiers=6144");
        const int recordedBefore = logCount(recorded);
        const int triggeredBefore = logCount(kTriggered);
        QVERIFY2(startRecordingMoveHotkey(), qPrintable(logText()));
        QVERIFY(keys("ctrl+alt+n"));
        QVERIFY2(waitForLog(recorded, recordedBefore), qPrintable(logText()));
        QCOMPARE(logCount(kTriggered), triggeredBefore);
        // And afterwards the hot keys hold their combinations again.
        QVERIFY(
            logText().contains("ApplicationController.pauseHotkeysWhileRecording recording=false"));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));
    }

    void hidingTheIconHidesIt() {
        QVERIFY(openPreferences());
        QVERIFY(agentWindows().contains(trayIcon_));
        QVERIFY(keys("shift+Tab", kBackTabsToHideIcon));
        QVERIFY(keys("space"));
        QVERIFY(X11TestSession::waitUntil([&] { return config().hideMenuBarIcon() == true; }));
        QVERIFY2(
            X11TestSession::waitUntil([&] { return agentWindows() == QStringList{preferences_}; }),
            qPrintable(logText()));
        // And back.
        QVERIFY(keys("space"));
        QVERIFY(X11TestSession::waitUntil([&] { return config().hideMenuBarIcon() == false; }));
        QVERIFY(X11TestSession::waitUntil([&] { return agentWindows().size() == 2; }));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));
    }

    void cleanupTestCase() { QVERIFY(quit()); }

private:
    // The command line with the agent's configuration folder; its exit code, or -1.
    int paneforge(const QStringList& arguments) {
        QProcess cli;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", configHome());
        cli.setProcessEnvironment(env);
        cli.start(QStringLiteral(PANEFORGE_AGENT), arguments);
        return cli.waitForFinished(10000) && cli.exitStatus() == QProcess::NormalExit
                   ? cli.exitCode()
                   : -1;
    }
    QByteArray configBytes() {
        QFile file(store().getConfigPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // Makes the xterm the focused window and returns its frame.
    std::optional<DesktopRect> focusXterm() {
        return session_.activate(xterm_) ? frame(xterm_) : std::nullopt;
    }

    // Opens the preferences with their hot key over xterm; waits until the window has the
    // keyboard.
    bool openPreferences() {
        return session_.activate(xterm_) && keys("ctrl+alt+p") &&
               waitForKeyboard(kPreferences, &preferences_);
    }
    // Tabs to the move hot key's record button and presses it; waits until the agent records.
    bool startRecordingMoveHotkey() {
        const QString started = QStringLiteral("PreferencesWindowController.record slot=4");
        const int before = logCount(started);
        // Space presses the focused button; it records from the next key on.
        return keys("Tab", kTabsToRecordMoveHotkey) && keys("space") &&
               waitForLog(started, before) &&
               logText().contains(
                   "ApplicationController.pauseHotkeysWhileRecording recording=true");
    }

    QString leftDisplay_;
    QString preferences_;
};

int main(int argc, char** argv) {
    return runX11Test<AgentShellTest>(argc, argv, {.twoMonitors = true, .trayHost = true});
}

#include "agent_shell.moc"
