#include "app/onboarding/privacy_permission_gate.h"
#include "app/onboarding/quick_start_controller.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QtTest>

using namespace paneforge;

namespace {

struct Gate {
    Gate() {
        privacy.journal = views.journal = [this](const QString& line) { journal << line; };
        privacy.grants = true;
        gate.setOnReady([this] { ++readyCalls; });
        gate.startWatchdog();
    }
    void ticks(int count) {
        for (int i = 0; i < count; ++i) {
            scheduler.advance(PrivacyPermissionGate::watchdogIntervalSeconds);
        }
    }
    int count(const QString& line) const { return int(journal.filter(line).size()); }

    fakes::Windows windows;
    fakes::Permissions privacy;
    fakes::Views views;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    bool tapInstalled = false;
    int readyCalls = 0;
    QStringList journal;
    PrivacyPermissionGate gate{PrivacyPermissionGateServices{
        windows, privacy, privacy, scheduler, notifications, [this] { return tapInstalled; },
        [this](std::function<void()> onButton) {
            return views.makePermissionCoach(std::move(onButton));
        },
        [this](const QString& line) { journal << line; }}};
};

const QString kResetAccessibility = QStringLiteral("/usr/bin/tccutil reset Accessibility");
const QString kResetListenEvent = QStringLiteral("/usr/bin/tccutil reset ListenEvent");

struct Guide {
    Guide() {
        views.journal = [](const QString&) {};
    }
    fakes::Views views;
    int editorOpenings = 0;
    int completions = 0;
    QuickStartController controller{[this](QuickStartActions actions) {
                                        return views.makeQuickStartWindow(std::move(actions));
                                    },
                                    [this] { ++editorOpenings; }, [this] { ++completions; }};
    fakes::QuickStartWindow& window() { return *views.quickStart; }
};

} // namespace

class OnboardingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void bothPermissionsAreReadyAtOnce() {
        Gate gate;
        gate.tapInstalled = true;
        gate.gate.handleWatchdogTick();
        gate.ticks(3);
        QCOMPARE(gate.readyCalls, 1);
        QVERIFY(!gate.views.coach);
        QCOMPARE(gate.count(QStringLiteral("tccutil")), 0);
    }

    void missingAccessibilityIsResetAndPromptedOnce() {
        Gate gate;
        gate.windows.trusted = false;
        gate.tapInstalled = true;
        gate.gate.handleWatchdogTick();
        gate.ticks(2);
        QCOMPARE(gate.count(kResetAccessibility), 1);
        QCOMPARE(gate.windows.trustPrompts, 1);
        QCOMPARE(gate.count(QStringLiteral("coach.present Open Accessibility")), 3);
        QCOMPARE(gate.count(QStringLiteral("PrivacyPermissionGate.coach step=accessibility")), 3);
        // The button leads to the pane of what is missing.
        gate.views.coach->button();
        QVERIFY(gate.journal.last().endsWith(QStringLiteral("?Privacy_Accessibility")));

        gate.windows.trusted = true;
        gate.privacy.activated();
        QVERIFY(!gate.views.coach->visible);
        QCOMPARE(gate.readyCalls, 1);

        // Lost later: a new missing period, with one new reset; onReady is not called again.
        gate.windows.trusted = false;
        gate.ticks(2);
        QCOMPARE(gate.count(kResetAccessibility), 2);
        gate.windows.trusted = true;
        gate.ticks(1);
        QCOMPARE(gate.readyCalls, 1);
    }

    void aTapSeenOnceIsNoStaleListenEventGrant() {
        Gate gate;
        gate.windows.trusted = false;
        gate.tapInstalled = true;
        gate.gate.handleWatchdogTick();
        gate.tapInstalled = false;
        gate.ticks(2);
        QCOMPARE(gate.count(kResetListenEvent), 0);
        gate.windows.trusted = true;
        gate.ticks(1);
        QCOMPARE(gate.readyCalls, 1);
    }

    void missingListenEventIsResetRequestedAndCoached() {
        Gate gate;
        const auto cleared = gate.notifications.observe(Notification::ListenEventGrantCleared, [&] {
            gate.journal << QStringLiteral("cleared");
        });
        gate.gate.handleWatchdogTick();
        gate.ticks(2);
        QCOMPARE(gate.journal.mid(0, 5),
                 QStringList({kResetListenEvent + QStringLiteral(" app.paneforge.Paneforge"),
                              QStringLiteral("cleared"), QStringLiteral("requestListenEventAccess"),
                              QStringLiteral("PrivacyPermissionGate.requestListenEventGrant "
                                             "granted=false"),
                              QStringLiteral("PrivacyPermissionGate.coach step=listenEvent")}));
        QCOMPARE(gate.count(kResetListenEvent), 1);
        QCOMPARE(gate.count(QStringLiteral("coach.present Open Input Monitoring")), 3);
        gate.views.coach->button();
        QVERIFY(gate.journal.last().endsWith(QStringLiteral("?Privacy_ListenEvent")));

        // The tap's installation is checked at once.
        gate.tapInstalled = true;
        gate.notifications.post(Notification::EventTapInstalled);
        QCOMPARE(gate.journal.last(), QStringLiteral("coach.dismiss"));
        QCOMPARE(gate.readyCalls, 1);
    }

    void withoutPrivacyGrantsTheCoachOnlyExplains() {
        Gate gate;
        gate.privacy.grants = false;
        gate.gate.handleWatchdogTick();
        gate.ticks(3);
        QCOMPARE(gate.journal,
                 QStringList({QStringLiteral("PrivacyPermissionGate.coach step=listenEvent"),
                              QStringLiteral("coach.present Open Input Monitoring")}));
        gate.views.coach->button();
        QVERIFY(!gate.views.coach->visible);
        gate.ticks(1);
        QVERIFY(!gate.views.coach->visible);
        gate.tapInstalled = true;
        gate.ticks(1);
        QCOMPARE(gate.readyCalls, 1);
    }

    void guideNavigatesAndCountsAsCompletedHoweverLeft() {
        Guide guide;
        guide.controller.show();
        QCOMPARE(guide.window().page, QuickStartController::chrome(0));
        guide.window().actions.back();
        QCOMPARE(guide.controller.currentIndex(), 0);
        guide.window().actions.next();
        guide.window().actions.primaryAction();
        QCOMPARE(guide.editorOpenings, 1);
        QVERIFY(guide.controller.isShown());
        guide.window().actions.next();
        QCOMPARE(guide.window().page, QuickStartController::chrome(2));
        guide.window().actions.next(); // Done
        QVERIFY(!guide.controller.isShown());
        QCOMPARE(guide.completions, 1);

        // Shown again from the first page (Skip and Escape end it too: agent_onboarding).
        guide.controller.show();
        QCOMPARE(guide.controller.currentIndex(), 0);
    }
};

QTEST_GUILESS_MAIN(OnboardingTest)
#include "tst_onboarding.moc"
