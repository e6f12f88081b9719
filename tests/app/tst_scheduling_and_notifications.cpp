#include "app/runtime/config_file_watcher.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/qt_scheduler.h"
#include "manual_scheduler.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

// A scheduler and the way to let its time pass: the manual clock in steps of a millisecond, Qt's
// event loop until the condition holds (or a generous deadline passes).
struct Subject {
    std::unique_ptr<Scheduler> scheduler;
    std::function<bool(const std::function<bool()>&)> runUntil;
};

Subject subject() {
    QFETCH(bool, manual);
    if (!manual) {
        return {std::make_unique<QtScheduler>(),
                [](const std::function<bool()>& done) { return QTest::qWaitFor(done, 10000); }};
    }
    auto scheduler = std::make_unique<ManualScheduler>();
    auto* clock = scheduler.get();
    return {std::move(scheduler), [clock](const std::function<bool()>& done) {
                for (int step = 0; step < 10000 && !done(); ++step) {
                    clock->advance(0.001);
                }
                return done();
            }};
}

enum class Change { EditedInPlace, RemovedThenWritten, OwnSave };

bool write(const QString& path, const QByteArray& bytes, bool inPlace) {
    if (inPlace) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) &&
               file.flush();
    }
    QSaveFile file(path); // a new file renamed over the old one, as every save does
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

// One contract for both schedulers: what the agent runs on is what the tests step by hand. Then
// the notification center, and the file watcher that posts to it, against the real file system
// on the manual clock: each change is looked at once the watcher has scheduled its look.
class SchedulingAndNotificationsTest : public QObject {
    Q_OBJECT

    ManualScheduler scheduler_;

    // Lets the watcher see what happened on disk, then runs its look.
    void settle() {
        QTRY_VERIFY(scheduler_.activeTimerCount() > 0);
        scheduler_.advance(ConfigFileWatcher::settleDelay);
    }

    void schedulers() {
        QTest::addColumn<bool>("manual");
        QTest::newRow("ManualScheduler") << true;
        QTest::newRow("QtScheduler") << false;
    }

private Q_SLOTS:
    void delayedWorkRunsOnceInTimeOrderAfterPostedWork_data() { schedulers(); }
    void delayedWorkRunsOnceInTimeOrderAfterPostedWork() {
        auto [scheduler, runUntil] = subject();
        QStringList ran;
        const auto late = scheduler->postAfter(0.04, [&] { ran << "late"; });
        scheduler->postAfter(0.01, [&] { ran << "early"; }); // handle dropped: still runs
        scheduler->post([&] { ran << "posted"; });
        QVERIFY(ran.isEmpty());
        QVERIFY(runUntil([&] { return ran.size() == 3; }));
        QCOMPARE(ran, (QStringList{"posted", "early", "late"}));
        QVERIFY(!late->isActive());
    }

    void cancelledWorkNeverRuns_data() { schedulers(); }
    void cancelledWorkNeverRuns() {
        auto [scheduler, runUntil] = subject();
        int onceRuns = 0;
        int repeats = 0;
        scheduler->postAfter(0.01, [&] { ++onceRuns; })->cancel();
        // A tick that came after the cancel would come before `done` too.
        bool done = false;
        Scheduler& later = *scheduler;
        ScheduledWorkHandle repeating = scheduler->repeatEvery(0.01, [&] {
            if (++repeats == 3) {
                repeating->cancel(); // work may stop itself
                later.postAfter(0.03, [&] { done = true; });
            }
        });
        QVERIFY(runUntil([&] { return done; }));
        QCOMPARE(onceRuns, 0);
        QCOMPARE(repeats, 3);
    }

    void notificationsReachObserversWhileTokenLives() {
        NotificationCenter center;
        QStringList seen;
        NotificationCenter::ObservationToken second;
        auto first = center.observe(notifications::kConfigChanged, [&] {
            seen << "first";
            if (seen.size() > 2) {
                second.reset(); // dropped while the notice is delivered: skipped
            }
        });
        second = center.observe(notifications::kConfigChanged, [&] { seen << "second"; });
        auto other = center.observe(notifications::kHotkeyChanged, [&] { seen << "other"; });
        center.post(notifications::kConfigChanged);
        center.post(notifications::kConfigChanged);
        first.reset();
        center.post(notifications::kConfigChanged);
        QCOMPARE(seen, (QStringList{"first", "second", "first"}));
    }

    // A save by another process, followed by the running agent: agent_shell.
    void oneNotificationPerChange_data() {
        QTest::addColumn<Change>("change");
        QTest::newRow("edited in place") << Change::EditedInPlace;
        QTest::newRow("removed, then written") << Change::RemovedThenWritten;
        QTest::newRow("the agent's own save") << Change::OwnSave;
    }
    void oneNotificationPerChange() {
        QFETCH(Change, change);
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("config.json"));
        QVERIFY(write(path, "{\"v\":1}", false));
        NotificationCenter notifications;
        int posts = 0;
        const auto token =
            notifications.observe(Notification::ConfigChanged, [&posts] { ++posts; });
        ConfigFileWatcher watcher(path, scheduler_, notifications);
        if (change == Change::RemovedThenWritten) {
            QVERIFY(QFile::remove(path));
            settle();
            QCOMPARE(posts, 0); // no file is no configuration to follow yet
        }
        QVERIFY(write(path, "{\"v\":2}", change == Change::EditedInPlace));
        if (change == Change::OwnSave) {
            notifications.post(Notification::ConfigChanged);
        }
        settle();
        QCOMPARE(posts, 1);
        // The watch follows the file that replaced the old one: a later edit is seen too.
        QVERIFY(write(path, "{\"v\":3}", true));
        settle();
        QCOMPARE(posts, 2);
    }
};

QTEST_GUILESS_MAIN(SchedulingAndNotificationsTest)
#include "tst_scheduling_and_notifications.moc"
