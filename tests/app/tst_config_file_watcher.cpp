#include "app/runtime/config_file_watcher.h"
#include "manual_scheduler.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

enum class Change { SavedByRename, EditedInPlace, RemovedThenWritten, OwnSave };

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

// The file watcher against the real file system, on the manual clock: each change is looked at
// once the watcher has scheduled its look.
class ConfigFileWatcherTest : public QObject {
    Q_OBJECT

    ManualScheduler scheduler_;

    // Lets the watcher see what happened on disk, then runs its look.
    void settle() {
        QTRY_VERIFY(scheduler_.activeTimerCount() > 0);
        scheduler_.advance(ConfigFileWatcher::settleDelay);
    }

private Q_SLOTS:
    void oneNotificationPerChange_data() {
        QTest::addColumn<Change>("change");
        QTest::newRow("saved by another process") << Change::SavedByRename;
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

        switch (change) {
        case Change::SavedByRename:
        case Change::OwnSave:
            QVERIFY(write(path, "{\"v\":2}", false));
            break;
        case Change::EditedInPlace:
            QVERIFY(write(path, "{\"v\":2}", true));
            break;
        case Change::RemovedThenWritten:
            QVERIFY(QFile::remove(path));
            settle();
            QCOMPARE(posts, 0); // no file is no configuration to follow yet
            QVERIFY(write(path, "{\"v\":2}", false));
            break;
        }
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

QTEST_GUILESS_MAIN(ConfigFileWatcherTest)
#include "tst_config_file_watcher.moc"
