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

enum class Change { RemovedThenWritten, OwnSave };

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

// The file watcher against the real file system on the manual clock: each change is looked at once
// the watcher has scheduled its look.
class SchedulingAndNotificationsTest : public QObject {
    Q_OBJECT

    ManualScheduler scheduler_;

    void settle() {
        QTRY_VERIFY(scheduler_.activeTimerCount() > 0);
        scheduler_.advance(ConfigFileWatcher::settleDelay);
    }

private Q_SLOTS:
    // One contract for both schedulers: what the agent runs on is what the tests step by hand.
    void workRunsOnceInOrderUnlessCancelled_data() {
        QTest::addColumn<bool>("manual");
        QTest::newRow("QtScheduler") << false;
        QTest::newRow("ManualScheduler") << true;
    }
    void workRunsOnceInOrderUnlessCancelled() {
        QFETCH(bool, manual);
        QtScheduler qt;
        ManualScheduler clock;
        Scheduler& scheduler = manual ? static_cast<Scheduler&>(clock) : qt;
        QStringList ran;
        int repeats = 0;
        const auto late = scheduler.postAfter(0.04, [&] { ran << "late"; });
        scheduler.postAfter(0.01, [&] { ran << "early"; }); // handle dropped: still runs
        scheduler.postAfter(0.01, [&] { ran << "cancelled"; })->cancel();
        scheduler.post([&] { ran << "posted"; });
        QVERIFY(ran.isEmpty());
        // A tick that came after the cancel would come before "done" too.
        ScheduledWorkHandle repeating = scheduler.repeatEvery(0.01, [&] {
            if (++repeats == 3) {
                repeating->cancel(); // work may stop itself
                scheduler.postAfter(0.03, [&] { ran << "done"; });
            }
        });
        const auto finished = [&] { return ran.contains("done"); };
        for (int step = 0; manual && step < 1000 && !finished(); ++step) {
            clock.advance(0.001);
        }
        QVERIFY(QTest::qWaitFor(finished, 10000));
        QCOMPARE(ran, (QStringList{"posted", "early", "late", "done"}));
        QCOMPARE(repeats, 3);
        QVERIFY(!late->isActive());
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
        QVERIFY(write(path, "{\"v\":2}", false));
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
