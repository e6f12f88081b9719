#include "app/onboarding/privacy_permission_gate.h"
#include "app/onboarding/quick_start_controller.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QtTest>

using namespace paneforge;

namespace {

// The first watchdog tick has run with the given state.
struct Gate {
    Gate(bool trusted, bool tap, bool grants = true)
        : tapInstalled(tap) {
        privacy.journal = views.journal = [this](const QString& line) { journal << line; };
        privacy.grants = grants;
        windows.trusted = trusted;
        gate.setOnReady([this] { ++readyCalls; });
        gate.startWatchdog();
        gate.handleWatchdogTick();
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
    NotificationCenter::ObservationToken cleared = notifications.observe(
        Notification::ListenEventGrantCleared, [this] { journal << QStringLiteral("cleared"); });
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
    fakes::Views views;
    int completions = 0;
    QuickStartController controller{[this](QuickStartActions actions) {
                                        return views.makeQuickStartWindow(std::move(actions));
                                    },
                                    [] {}, [this] { ++completions; }};
    fakes::QuickStartWindow& window() { return *views.quickStart; }
};

} // namespace

// Both permissions ready at once (X11 with XInput 2.1): agent_onboarding.
class OnboardingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void missingAccessibilityIsResetAndPromptedOnce() {
        Gate gate(false, true);
        gate.ticks(2);
        QCOMPARE(gate.count(kResetAccessibility), 1);
        QCOMPARE(gate.windows.trustPrompts, 1);
        QCOMPARE(gate.count(QStringLiteral("coach.present Open Accessibility")), 3);
        gate.views.coach->button(); // leads to the pane of what is missing
        QVERIFY(gate.journal.last().endsWith(QStringLiteral("?Privacy_Accessibility")));
        gate.windows.trusted = true;
        gate.privacy.activated();
        QVERIFY(!gate.views.coach->visible);
        QCOMPARE(gate.readyCalls, 1);
    }

    void aTapSeenOnceIsNoStaleListenEventGrant() {
        Gate gate(false, true);
        gate.tapInstalled = false;
        gate.ticks(2);
        QCOMPARE(gate.count(kResetListenEvent), 0);
    }

    void missingListenEventIsResetRequestedAndCoached() {
        Gate gate(true, false);
        gate.ticks(2);
        QCOMPARE(
            gate.journal.mid(0, 3),
            QStringList({kResetListenEvent + QStringLiteral(" app.paneforge.Paneforge"),
                         QStringLiteral("cleared"), QStringLiteral("requestListenEventAccess")}));
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
        Gate gate(true, false, false);
        gate.ticks(3);
        QCOMPARE(gate.journal,
                 QStringList({QStringLiteral("PrivacyPermissionGate.coach step=listenEvent"),
                              QStringLiteral("coach.present Open Input Monitoring")}));
        gate.views.coach->button();
        gate.ticks(1);
        QVERIFY(!gate.views.coach->visible);
        gate.tapInstalled = true;
        gate.ticks(1);
        QCOMPARE(gate.readyCalls, 1);
    }

    // Next, Open Zone Editor, Skip and Escape through the real agent: agent_onboarding.
    void guideGoesBackAndEndsOnItsLastPage() {
        Guide guide;
        guide.controller.show();
        guide.window().actions.back(); // on the first page: stays there
        QCOMPARE(guide.controller.currentIndex(), 0);
        guide.window().actions.next();
        guide.window().actions.next();
        guide.window().actions.next(); // Done, on the last page
        QVERIFY(!guide.controller.isShown());
        QCOMPARE(guide.completions, 1);
        guide.controller.show(); // again from the first page
        QCOMPARE(guide.controller.currentIndex(), 0);
    }
};

QTEST_GUILESS_MAIN(OnboardingTest)
#include "tst_onboarding.moc"
