// The real agent's first start under Xvfb, openbox and a tray host: the quick start guide appears
// by itself, takes the keyboard, opens the zone editor and, once skipped, never appears by itself
// again; "Quick Start…" in the tray menu brings it back, and Escape closes it.

#include "x11_agent_test.h"

#include <QTest>

using namespace paneforge;

class AgentOnboardingTest : public X11AgentTest {
    Q_OBJECT

public:
    using X11AgentTest::X11AgentTest;

private Q_SLOTS:
    void firstStartShowsTheGuideWithTheKeyboard() {
        QVERIFY(startAgent(std::nullopt));
        QVERIFY2(waitForKeyboard(guide_), qPrintable(logTail()));
        // X11 with XInput 2.1 needs nothing from the user: no coach.
        QVERIFY(!logText().contains("PrivacyPermissionGate.coach"));
    }

    void theGuideOpensTheZoneEditorAndSkipEndsIt() {
        // Return is Next: on the second page, Tab reaches "Open Zone Editor" first. The editor
        // takes the keyboard over the main display and the guide stays open behind it.
        const QString guide = agentWindows(guide_).value(0);
        QVERIFY(keys("Return Tab space"));
        QVERIFY2(X11TestSession::waitUntil([&] { return agentWindows(editor_).size() == 1; }),
                 qPrintable(logTail()));
        QCOMPARE(agentWindows(guide_), QStringList{guide});
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(editor_));
        // Back in the guide, the next Tab is Skip.
        QVERIFY(xdotool({"windowactivate", "--sync", guide}));
        QVERIFY(waitForKeyboard(guide_));
        QVERIFY(keys("Tab space"));
        QVERIFY(waitUntilClosed(guide_));
        QVERIFY(completed());
        QVERIFY(quit());
    }

    void aSecondStartShowsNothingButTheMenuRowDoes() {
        QVERIFY(startAgent(std::nullopt));
        QVERIFY2(logText().contains("permissionsReady quickStart=false"), qPrintable(logTail()));
        QVERIFY(agentWindows(guide_).isEmpty());

        // "Quick Start…", the fifth row from the bottom, opens it again with the keyboard; closed
        // with Escape it counts as completed too (the file is set back first to see it written).
        store().saveConfig(store().loadConfig().withHasCompletedQuickStart(false));
        QVERIFY(findTrayIcon());
        QVERIFY(chooseFromTrayMenu("Up Up Up Up Up Return"));
        QVERIFY(waitForKeyboard(guide_));
        QVERIFY(keys("Escape"));
        QVERIFY(waitUntilClosed(guide_));
        QVERIFY(completed());
        QVERIFY(quit());
    }

private:
    bool completed() {
        return X11TestSession::waitUntil([&] { return config().hasCompletedQuickStart() == true; });
    }
    const QString guide_ = QStringLiteral("^Quick Start$");
    const QString editor_ = QStringLiteral("^Paneforge Zone Editor$");
};

int main(int argc, char** argv) {
    return runX11Test<AgentOnboardingTest>(argc, argv, {.trayHost = true});
}

#include "agent_onboarding.moc"
