#include "app/runtime/notification_center.h"
#include "manual_scheduler.h"

#include <QTest>

using namespace paneforge;

class SchedulingAndNotificationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timersFireInTimeOrder() {
        ManualScheduler scheduler;
        QStringList fired;
        scheduler.postAfter(0.08, [&] { fired << QStringLiteral("reapply"); });
        scheduler.post([&] { fired << QStringLiteral("posted"); });
        auto retry = scheduler.repeatEvery(1.0, [&] { fired << QStringLiteral("retry"); });
        scheduler.advance(0.05);
        QCOMPARE(fired, QStringList{QStringLiteral("posted")});
        scheduler.advance(2.0);
        QCOMPARE(fired, (QStringList{QStringLiteral("posted"), QStringLiteral("reapply"),
                                     QStringLiteral("retry"), QStringLiteral("retry")}));
        QCOMPARE(scheduler.now(), 2.05);
    }

    void cancelledWorkNeverRuns() {
        ManualScheduler scheduler;
        int runs = 0;
        auto once = scheduler.postAfter(1.0, [&] { ++runs; });
        ScheduledWorkHandle repeating;
        repeating = scheduler.repeatEvery(1.0, [&] {
            ++runs;
            repeating->cancel(); // a timer may stop itself
        });
        once->cancel();
        QVERIFY(!once->isActive());
        scheduler.advance(5.0);
        QCOMPARE(runs, 1);
        QCOMPARE(scheduler.activeTimerCount(), 0);
    }

    void droppedHandleKeepsWorkScheduled() {
        ManualScheduler scheduler;
        int runs = 0;
        scheduler.postAfter(0.5, [&] { ++runs; });
        scheduler.advance(1.0);
        QCOMPARE(runs, 1);
    }

    void notificationsReachObserversWhileTokenLives() {
        NotificationCenter center;
        QStringList seen;
        auto first = center.observe(notifications::kConfigChanged, [&] { seen << "first"; });
        auto second = center.observe(notifications::kConfigChanged, [&] { seen << "second"; });
        auto other = center.observe(notifications::kHotkeyChanged, [&] { seen << "other"; });
        center.post(notifications::kConfigChanged);
        QCOMPARE(seen, (QStringList{"first", "second"}));
        first.reset();
        center.post(notifications::kConfigChanged);
        QCOMPARE(seen, (QStringList{"first", "second", "second"}));
        QCOMPARE(center.observerCount(notifications::kConfigChanged), 1);
    }

    void observerDroppedDuringDeliveryIsSkipped() {
        NotificationCenter center;
        NotificationCenter::ObservationToken second;
        int secondRuns = 0;
        auto first = center.observe(notifications::kConfigChanged, [&] { second.reset(); });
        second = center.observe(notifications::kConfigChanged, [&] { ++secondRuns; });
        center.post(notifications::kConfigChanged);
        QCOMPARE(secondRuns, 0);
    }
};

QTEST_APPLESS_MAIN(SchedulingAndNotificationsTest)
#include "tst_scheduling_and_notifications.moc"
