// The real agent's shell under Xvfb, openbox and a tray host, on two monitors: its global hot keys
// pressed with xdotool, its tray menu opened with a click and walked with the keyboard, a backup
// restored, its about and preferences windows taking the keyboard, a hot key recorded.

#include "x11_agent_test.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

// Key codes are macOS virtual key codes: M is 46 (moves to the next display), N is 45, L is 37 (the
// layout selector), P is 35 (the preferences), D is 2: Super+D is openbox's own "show the desktop".
constexpr std::uint32_t kControlOption = modifier_bits::kControl | modifier_bits::kOption;

// From the margin slider, where the preferences open, Tab reaches the eight snap boxes and then
// the hot key rows' record and clear buttons; the tests below prove this order by using it.
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
        QVERIFY(startAgent(PaneforgeConfig::makeDefault()
                               .withOpenLayoutSelectorHotkey(HotkeyDefinition{37, kControlOption})
                               .withMoveToNextDisplayHotkey(HotkeyDefinition{46, kControlOption})
                               .withOpenEditorHotkey(HotkeyDefinition{2, modifier_bits::kCommand})
                               .withOpenPreferencesHotkey(HotkeyDefinition{35, kControlOption})
                               .withLaunchAtLogin(true)
                               .withHasCompletedQuickStart(true)));
        QVERIFY2(printed_.contains("icon shown"), qPrintable(printed_));
        QVERIFY(findTrayIcon());
        xterm_ = startClient("xterm", {"-geometry", "60x20+100+150"});
        QVERIFY(xterm_);
    }

    void windowManagersCombinationIsRefused() {
        // Super+D is openbox's "show the desktop"; the other hot keys register (they work below).
        QVERIFY2(logText().contains("RegisterEventHotKey failed: BadAccess (id=1)"),
                 qPrintable(logTail()));
        // A build run from its build tree never writes an autostart entry, whatever the setting.
        QVERIFY(!QDir(configHome() + "/autostart").exists());
    }

    void moveHotkeyMovesTheFocusedWindowAndBack() {
        // Back with Num Lock and Caps Lock on: they do not disable a hot key.
        for (const QString press :
             {"ctrl+alt+m", "Num_Lock Caps_Lock ctrl+alt+m Num_Lock Caps_Lock"}) {
            const auto start = focusXterm();
            QVERIFY(start && keys(press));
            QVERIFY2(xtermLeaves(*start), qPrintable(logTail()));
        }
    }

    void restoredBackupReachesTheRunningAgent() {
        const QTemporaryDir folder;
        const QString backup = folder.filePath("backup.json");
        const QByteArray original = configBytes();
        QVERIFY(session_.run("env", {"XDG_CONFIG_HOME=" + configHome(), PANEFORGE_AGENT, "backup",
                                     "export", backup}));
        // Another program changes the move hot key to Ctrl+Alt+N: the agent follows the file.
        QVERIFY(waitForRegistration(45, [&] {
            store().saveConfig(store().loadConfig().withMoveToNextDisplayHotkey(
                HotkeyDefinition{45, kControlOption}));
        }));

        // "Restore Settings…", sixth from the bottom: the file dialog has the keyboard, so the
        // file's name can be typed; then the preview has it, and Return restores the file byte
        // for byte, and the old hot key, which works.
        const QByteArray changed = configBytes();
        QVERIFY(focusXterm());
        QVERIFY(chooseFromTrayMenu("Up Up Up Up Up Up Return"));
        QVERIFY2(waitForKeyboard("^Restore Settings$"), qPrintable(logTail()));
        QVERIFY(xdotool({"type", backup}) && keys("Return"));
        QVERIFY2(waitForKeyboard("^Restore Settings\\?$"), qPrintable(logTail()));
        QCOMPARE(configBytes(), changed);
        QVERIFY(waitForRegistration(46, [&] { keys("Return"); }));
        QVERIFY(X11TestSession::waitUntil([&] { return configBytes() == original; }));
        const auto start = focusXterm();
        QVERIFY(start && keys("ctrl+alt+m"));
        QVERIFY(xtermLeaves(*start));
    }

    void trayMenuOpensTheZoneEditorOfADisplay() {
        // The fifth row, "Zone Editor…", opens its submenu of displays; the editor takes the
        // keyboard, and Escape closes it.
        QVERIFY(chooseFromTrayMenu("Down Down Down Down Down Right Down Return"));
        QVERIFY2(waitForKeyboard("^Paneforge Zone Editor$"), qPrintable(logTail()));
        QVERIFY(logText().contains(
            QString("showEditor displayId=%1 ").arg(displays_.getActiveDisplays().at(1))));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed("^Paneforge Zone Editor$"));
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

    void preferencesTakeTheKeyboardAndSaveAChange() {
        QVERIFY2(openPreferences(), qPrintable(logTail()));
        // The window opens on the margin slider: the arrow key moves it by a point.
        QCOMPARE(config().cellMarginPoints(), 8.0);
        QVERIFY(keys("Right"));
        QVERIFY2(X11TestSession::waitUntil([&] { return config().cellMarginPoints() == 9.0; }),
                 qPrintable(logTail()));
    }

    void aRecordedHotkeyWorksAtOnce() {
        QVERIFY2(startRecordingMoveHotkey(), qPrintable(logTail()));
        QVERIFY2(waitForRegistration(45, [&] { keys("ctrl+alt+n"); }), qPrintable(logTail()));
        QCOMPARE(config().moveToNextDisplayHotkey(),
                 std::optional(HotkeyDefinition{45, kControlOption}));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));

        // The old combination no longer moves the focused window, the new one does. The server
        // handles the two presses in order, so a move by the old one would be logged first.
        const auto start = focusXterm();
        QVERIFY(start);
        const int before = logCount(kTriggered);
        QVERIFY(keys("ctrl+alt+m ctrl+alt+n"));
        QVERIFY2(waitForLog(kTriggered, before), qPrintable(logTail()));
        QVERIFY2(xtermLeaves(*start), qPrintable(logTail()));
        QCOMPARE(logCount(kTriggered), before + 1);
    }

    void recordingTakesACombinationTheHotkeysHold() {
        // Ctrl+Alt+N is held by the move hot key; while recording it reaches the window instead.
        QVERIFY(openPreferences());
        const QString recorded =
            QStringLiteral("PreferencesWindowController.recorded slot=4 keyCode=45 modifiers=6144");
        const int recordedBefore = logCount(recorded);
        const int triggeredBefore = logCount(kTriggered);
        QVERIFY2(startRecordingMoveHotkey(), qPrintable(logTail()));
        QVERIFY(keys("ctrl+alt+n"));
        QVERIFY2(waitForLog(recorded, recordedBefore), qPrintable(logTail()));
        QCOMPARE(logCount(kTriggered), triggeredBefore);
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));
    }

    void hidingTheIconHidesIt() {
        QVERIFY(openPreferences());
        QVERIFY(agentWindows().contains(trayIcon_));
        QVERIFY(keys("shift+Tab", kBackTabsToHideIcon));
        QVERIFY(keys("space"));
        QVERIFY2(
            X11TestSession::waitUntil([&] { return agentWindows() == QStringList{preferences_}; }),
            qPrintable(logTail()));
        QVERIFY(X11TestSession::waitUntil([&] { return config().hideMenuBarIcon() == true; }));
        // And back.
        QVERIFY(keys("space"));
        QVERIFY(X11TestSession::waitUntil([&] { return agentWindows().size() == 2; }));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(kPreferences));
    }

    void cleanupTestCase() { QVERIFY(quit()); }

private:
    QByteArray configBytes() {
        QFile file(store().getConfigPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    std::optional<DesktopRect> focusXterm() {
        return session_.activate(xterm_) ? frame(xterm_) : std::nullopt;
    }
    // Until the agent registers the move hot key with `keyCode`.
    bool waitForRegistration(int keyCode, const std::function<void()>& change) {
        const QString line = QString("HotkeyManager.register id=4 keyCode=%1 ").arg(keyCode);
        const int before = logCount(line);
        change();
        return waitForLog(line, before);
    }

    bool openPreferences() {
        return session_.activate(xterm_) && keys("ctrl+alt+p") &&
               waitForKeyboard(kPreferences, &preferences_);
    }
    // Space on the move hot key's record button: it records from the next key on.
    bool startRecordingMoveHotkey() {
        const QString started = QStringLiteral("PreferencesWindowController.record slot=4");
        const int before = logCount(started);
        return keys("Tab", kTabsToRecordMoveHotkey) && keys("space") && waitForLog(started, before);
    }

    QString preferences_;
};

int main(int argc, char** argv) {
    return runX11Test<AgentShellTest>(argc, argv, {.twoMonitors = true, .trayHost = true});
}

#include "agent_shell.moc"
