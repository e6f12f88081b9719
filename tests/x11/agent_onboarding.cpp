// The real agent's first start under Xvfb, openbox and a tray host: the quick start guide appears
// by itself, takes the keyboard, opens the zone editor and, once skipped, never appears by itself
// again; "Quick Start…" in the tray menu brings it back, and Escape closes it.

#include "core/config/config_store.h"
#include "x11_test_session.h"

#include <QFile>
#include <QTest>

using namespace paneforge;

class AgentOnboardingTest : public QObject {
    Q_OBJECT

public:
    explicit AgentOnboardingTest(X11TestSession& session)
        : session_(session)
        , agent_(session) {}

private Q_SLOTS:
    void firstStartShowsTheGuideWithTheKeyboard();
    void theGuideOpensTheZoneEditorAndSkipEndsIt();
    void aSecondStartShowsNothingButTheMenuRowDoes();

private:
    bool xdotool(const QStringList& arguments) { return session_.run("xdotool", arguments); }
    // The visible windows that xdotool finds by a title ("--name") or by Paneforge's class.
    QStringList windows(const QString& by = "--classname", const QString& what = "paneforge") {
        QString output;
        session_.run("xdotool", {"search", "--onlyvisible", by, what}, &output);
        return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    QStringList guideWindows() { return windows("--name", "^Quick Start$"); }
    // Waits until the guide is the one window with the keyboard.
    bool guideHasTheKeyboard() {
        return X11TestSession::waitUntil([&] {
            const QStringList guide = guideWindows();
            return guide.size() == 1 && activeWindow() == guide.front().toUInt();
        });
    }
    std::uint32_t activeWindow() const { return session_.activeWindow(); }
    ConfigStore store() const {
        return ConfigStore(LoggerFactory::makeLogger("Test"),
                           [this] { return agent_.configHome(); });
    }
    std::optional<bool> storedCompletion() const {
        return store().loadConfig().hasCompletedQuickStart();
    }
    bool startAgent() {
        QString output;
        const bool started = agent_.start(QStringLiteral(PANEFORGE_AGENT), &output);
        if (!started) {
            qWarning("%s", qPrintable(output));
        }
        return started;
    }

    X11TestSession& session_;
    X11AgentRun agent_;
};

void AgentOnboardingTest::firstStartShowsTheGuideWithTheKeyboard() {
    QVERIFY(!QFile::exists(agent_.configHome() + "/Paneforge/config.json"));
    QVERIFY(startAgent());
    const QString log = agent_.logText();
    QVERIFY2(log.contains("ApplicationController.permissionsReady quickStart=true"),
             qPrintable(log));
    // X11 with XInput 2.1 needs nothing from the user: no coach.
    QVERIFY(!log.contains("PrivacyPermissionGate.coach"));
    QVERIFY2(guideHasTheKeyboard(), qPrintable(QString("active window %1, guide %2")
                                                   .arg(activeWindow())
                                                   .arg(guideWindows().join(' '))));
}

void AgentOnboardingTest::theGuideOpensTheZoneEditorAndSkipEndsIt() {
    // Return is Next: on the second page, Tab reaches "Open Zone Editor" first. The editor takes
    // the keyboard over the main display and the guide stays open behind it.
    const QString guide = guideWindows().value(0);
    QVERIFY(xdotool({"key", "Return", "Tab", "space"}));
    QVERIFY2(X11TestSession::waitUntil(
                 [&] { return windows("--name", "^Paneforge Zone Editor$").size() == 1; }),
             qPrintable(agent_.logText()));
    QCOMPARE(guideWindows(), QStringList{guide});
    QVERIFY(xdotool({"key", "Escape"}));
    QVERIFY(X11TestSession::waitUntil(
        [&] { return windows("--name", "^Paneforge Zone Editor$").isEmpty(); }));
    // Back in the guide, the next Tab is Skip.
    QVERIFY(xdotool({"windowactivate", "--sync", guide}));
    QVERIFY(guideHasTheKeyboard());
    QVERIFY(xdotool({"key", "Tab", "space"}));
    QVERIFY(X11TestSession::waitUntil([&] { return guideWindows().isEmpty(); }));
    QVERIFY(X11TestSession::waitUntil([&] { return storedCompletion() == true; }));
    QVERIFY(agent_.quit());
}

void AgentOnboardingTest::aSecondStartShowsNothingButTheMenuRowDoes() {
    const int shown = agent_.logCount("permissionsReady quickStart=true");
    QVERIFY(startAgent());
    QVERIFY2(agent_.logText().contains("ApplicationController.permissionsReady quickStart=false"),
             qPrintable(agent_.logText()));
    QCOMPARE(agent_.logCount("permissionsReady quickStart=true"), shown);
    QVERIFY(guideWindows().isEmpty());

    // "Quick Start…", the fifth row from the bottom, opens it again with the keyboard; closed with
    // Escape it counts as completed too (the file is set back first to see it written).
    store().saveConfig(store().loadConfig().withHasCompletedQuickStart(false));
    QVERIFY(X11TestSession::waitUntil([&] { return windows().size() == 1; }));
    const QString icon = windows().front();
    QVERIFY(xdotool({"mousemove", "--window", icon, "11", "12", "click", "1"}));
    QVERIFY(X11TestSession::waitUntil([&] { return windows().size() == 2; }));
    QVERIFY(xdotool({"key", "Up", "Up", "Up", "Up", "Up", "Return"}));
    QVERIFY(guideHasTheKeyboard());
    QVERIFY(xdotool({"key", "Escape"}));
    QVERIFY(X11TestSession::waitUntil([&] { return guideWindows().isEmpty(); }));
    QVERIFY(X11TestSession::waitUntil([&] { return storedCompletion() == true; }));
    QVERIFY(agent_.quit());
}

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, X11TestSession::Options{.trayHost = true},
                             [&](X11TestSession& session) {
                                 AgentOnboardingTest test(session);
                                 return QTest::qExec(&test, argc, argv);
                             });
}

#include "agent_onboarding.moc"
