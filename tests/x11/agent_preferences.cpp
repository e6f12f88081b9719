// The real agent's preferences window under Xvfb, openbox and a tray host, on two monitors: opened
// by its hot key it has the keyboard; a setting changed with the keys lands in the configuration
// file; a hot key recorded by typing it works at once while the old combination no longer does;
// the hot keys let go of the keyboard while one is recorded; hiding the icon hides it; Escape
// closes the window.

#include "core/config/config_store.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QTest>

using namespace paneforge;

namespace {

// Key codes are macOS virtual key codes: P is 35, M is 46, N is 45.
constexpr std::uint32_t kControlOption = modifier_bits::kControl | modifier_bits::kOption;
const HotkeyDefinition kPreferencesHotkey{35, kControlOption};
const HotkeyDefinition kOldMoveHotkey{46, kControlOption};
const HotkeyDefinition kNewMoveHotkey{45, kControlOption};

// From the margin slider, where the window opens, Tab reaches the eight snap boxes and then the
// hot key rows' record and clear buttons (tst_preferences_window checks this order).
constexpr int kTabsToRecordMoveHotkey = 8 + 3 * 2 + 1;
// Backwards from the slider: Close, "Restore window size on unsnap", "Hide tray icon".
constexpr int kBackTabsToHideIcon = 3;

} // namespace

class AgentPreferencesTest : public QObject {
    Q_OBJECT

public:
    explicit AgentPreferencesTest(X11TestSession& session)
        : session_(session)
        , agent_(session) {}

private Q_SLOTS:
    void initTestCase();
    void hotkeyOpensItWithTheKeyboard();
    void aChangedSettingLandsInTheFile();
    void aRecordedHotkeyWorksAtOnce();
    void recordingTakesACombinationTheHotkeysHold();
    void hidingTheIconHidesIt();
    void cleanupTestCase();

private:
    bool xdotool(const QStringList& arguments, QString* output = nullptr) {
        return session_.run("xdotool", arguments, output);
    }
    bool keys(const QString& key, int times = 1) {
        QStringList arguments{"key", "--delay", "20"};
        for (int i = 0; i < times; ++i) {
            arguments << key;
        }
        return xdotool(arguments);
    }
    // Paneforge's mapped windows: the tray icon, and its menus or windows while they are open.
    QStringList visibleAgentWindows(const QString& name = {}) {
        return session_.visibleWindows("paneforge", name);
    }
    std::uint32_t activeWindow() const { return session_.activeWindow(); }
    bool activate(std::uint32_t window) { return session_.activate(window); }
    std::optional<DesktopRect> frame(std::uint32_t window) {
        return windows_.frame(X11WindowService::wrap(window));
    }
    PaneforgeConfig config() const {
        try {
            return store_.loadConfig();
        } catch (const std::exception&) {
            return PaneforgeConfig::makeDefault();
        }
    }
    // Opens the preferences with their hot key over xterm; waits until the window has the
    // keyboard.
    bool openPreferences();
    bool preferencesClosed() {
        return X11TestSession::waitUntil(
            [&] { return visibleAgentWindows("^Preferences$").isEmpty(); });
    }
    // Tabs to the move hot key's record button and presses it; waits until the agent records.
    bool startRecordingMoveHotkey();

    X11TestSession& session_;
    X11AgentRun agent_;
    ConfigStore store_{LoggerFactory::makeLogger("Test"), [this] { return agent_.configHome(); }};
    X11Connection connection_;
    X11DisplayServices displays_{connection_};
    ManualScheduler scheduler_;
    X11WindowService windows_{connection_, scheduler_, [](const QString&) {}};
    std::uint32_t xterm_ = 0;
    QString trayIcon_;
    QString preferences_;
};

void AgentPreferencesTest::initTestCase() {
    QVERIFY(connection_.isValid());
    QVERIFY(
        X11TestSession::waitUntil([this] { return displays_.getActiveDisplays().size() == 2; }));
    store_.saveConfig(PaneforgeConfig::makeDefault()
                          .withOpenPreferencesHotkey(kPreferencesHotkey)
                          .withMoveToNextDisplayHotkey(kOldMoveHotkey)
                          .withHasCompletedQuickStart(true));
    QString output;
    QVERIFY2(agent_.start(QStringLiteral(PANEFORGE_AGENT), &output), qPrintable(output));
    QVERIFY(X11TestSession::waitUntil([&] { return visibleAgentWindows().size() == 1; }));
    trayIcon_ = visibleAgentWindows().front();

    QString error;
    const auto xterm = session_.startClient("xterm", {"-geometry", "60x20+100+150"}, &error);
    QVERIFY2(xterm, qPrintable(error));
    xterm_ = *xterm;
    QVERIFY(X11TestSession::waitUntil([this] { return frame(xterm_).has_value(); }));
}

bool AgentPreferencesTest::openPreferences() {
    if (!activate(xterm_) || !keys("ctrl+alt+p")) {
        return false;
    }
    QStringList found;
    if (!X11TestSession::waitUntil([&] {
            found = visibleAgentWindows("^Preferences$");
            return found.size() == 1;
        })) {
        return false;
    }
    preferences_ = found.front();
    return X11TestSession::waitUntil([&] { return activeWindow() == preferences_.toUInt(); });
}

bool AgentPreferencesTest::startRecordingMoveHotkey() {
    const QString started = QStringLiteral("PreferencesWindowController.record slot=4");
    const int before = agent_.logCount(started);
    // Space presses the focused button; it records from the next key on.
    return keys("Tab", kTabsToRecordMoveHotkey) && keys("space") &&
           agent_.waitForLog(started, before) &&
           agent_.logText().contains(
               "ApplicationController.pauseHotkeysWhileRecording recording=true");
}

void AgentPreferencesTest::hotkeyOpensItWithTheKeyboard() {
    QVERIFY2(openPreferences(), qPrintable(QString("active window %1, preferences %2\n%3")
                                               .arg(activeWindow())
                                               .arg(preferences_, agent_.logText())));
}

void AgentPreferencesTest::aChangedSettingLandsInTheFile() {
    // The window opens on the margin slider: the arrow key moves it by a point.
    QCOMPARE(config().cellMarginPoints(), 8.0);
    QVERIFY(keys("Right"));
    QVERIFY2(X11TestSession::waitUntil([&] { return config().cellMarginPoints() == 9.0; }),
             qPrintable(agent_.logText()));
}

void AgentPreferencesTest::aRecordedHotkeyWorksAtOnce() {
    QVERIFY2(startRecordingMoveHotkey(), qPrintable(agent_.logText()));
    QVERIFY(keys("ctrl+alt+n"));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 return config().moveToNextDisplayHotkey() == std::optional(kNewMoveHotkey);
             }),
             qPrintable(agent_.logText()));
    QVERIFY(agent_.waitForLog("HotkeyManager.register id=4 keyCode=45 modifiers=6144", 0));
    // Escape closes the window.
    QVERIFY(keys("Escape"));
    QVERIFY(preferencesClosed());

    // The old combination no longer moves the focused window, the new one does. The server
    // handles the two presses in order, so a move by the old one would be logged first.
    QVERIFY(activate(xterm_));
    const auto start = frame(xterm_);
    QVERIFY(start);
    const auto left = displays_.getDisplayId({start->midX(), start->midY()});
    const QString triggered = QStringLiteral("HotkeyManager triggered (id=4)");
    const int before = agent_.logCount(triggered);
    QVERIFY(keys("ctrl+alt+m"));
    QVERIFY(keys("ctrl+alt+n"));
    QVERIFY2(agent_.waitForLog(triggered, before), qPrintable(agent_.logText()));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const auto now = frame(xterm_);
                 return now && displays_.getDisplayId({now->midX(), now->midY()}) != left;
             }),
             qPrintable(agent_.logText()));
    QCOMPARE(agent_.logCount(triggered), before + 1);
}

void AgentPreferencesTest::recordingTakesACombinationTheHotkeysHold() {
    // Ctrl+Alt+N is held by the move hot key; while recording it reaches the window instead.
    QVERIFY(openPreferences());
    const QString recorded =
        QStringLiteral("PreferencesWindowController.recorded slot=4 keyCode=45 modifiers=6144");
    const QString triggered = QStringLiteral("HotkeyManager triggered (id=4)");
    const int recordedBefore = agent_.logCount(recorded);
    const int triggeredBefore = agent_.logCount(triggered);
    QVERIFY2(startRecordingMoveHotkey(), qPrintable(agent_.logText()));
    QVERIFY(keys("ctrl+alt+n"));
    QVERIFY2(agent_.waitForLog(recorded, recordedBefore), qPrintable(agent_.logText()));
    QCOMPARE(agent_.logCount(triggered), triggeredBefore);
    // And afterwards the hot keys hold their combinations again.
    QVERIFY(agent_.logText().contains(
        "ApplicationController.pauseHotkeysWhileRecording recording=false"));
    QVERIFY(keys("Escape"));
    QVERIFY(preferencesClosed());
}

void AgentPreferencesTest::hidingTheIconHidesIt() {
    QVERIFY(openPreferences());
    QVERIFY(visibleAgentWindows().contains(trayIcon_));
    QVERIFY(keys("shift+Tab", kBackTabsToHideIcon));
    QVERIFY(keys("space"));
    QVERIFY(X11TestSession::waitUntil([&] { return config().hideMenuBarIcon() == true; }));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 const QStringList windows = visibleAgentWindows();
                 return windows.size() == 1 && windows.front() == preferences_;
             }),
             qPrintable(agent_.logText()));
    // And back.
    QVERIFY(keys("space"));
    QVERIFY(X11TestSession::waitUntil([&] { return config().hideMenuBarIcon() == false; }));
    QVERIFY(X11TestSession::waitUntil([&] { return visibleAgentWindows().size() == 2; }));
    QVERIFY(keys("Escape"));
    QVERIFY(preferencesClosed());
}

void AgentPreferencesTest::cleanupTestCase() {
    QVERIFY(agent_.quit());
}

int main(int argc, char** argv) {
    X11TestSession::Options options;
    options.twoMonitors = true;
    options.trayHost = true;
    return runWithX11Session(argc, argv, options, [&](X11TestSession& session) {
        AgentPreferencesTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "agent_preferences.moc"
