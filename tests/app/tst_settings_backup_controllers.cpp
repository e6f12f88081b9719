#include "app/backup/settings_backup_controllers.h"
#include "platform_fakes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

const QDateTime kNow(QDate(2025, 3, 14), QTime(9, 26, 53));

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

struct Flows {
    QTemporaryDir home;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("Test")),
                      [this] { return home.path(); }};
    QStringList shown;
    fakes::Backups views;
    NotificationCenter notifications;
    int posts = 0;
    NotificationCenter::ObservationToken token =
        notifications.observe(Notification::ConfigChanged, [this] { ++posts; });
    BackupSettingsController backup{store, views, QStringLiteral("1.2.3"), [] { return kNow; },
                                    [](const QString&) {}};
    RestoreSettingsController restore{store, views, notifications, [](const QString&) {}};

    Flows() {
        views.journal = [this](const QString& line) { shown << line; };
        store.saveConfig(PaneforgeConfig::makeDefault().withCellMarginPoints(3));
    }
    QString path(const QString& name) const { return home.filePath(name); }
    QByteArray configBytes() { return readAll(store.getConfigPath()); }
};

} // namespace

// A restore from the menu with its preview, and an exported backup restored: agent_shell.
class SettingsBackupControllersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void backup_data() {
        QTest::addColumn<QByteArray>("config"); // empty: the saved one
        QTest::addColumn<QString>("destination");
        QTest::addColumn<bool>("written");
        QTest::newRow("written") << QByteArray() << "backup.json" << true;
        QTest::newRow("folder missing") << QByteArray() << "gone/backup.json" << false;
        QTest::newRow("unreadable configuration") << QByteArray("{") << "backup.json" << false;
    }
    void backup() {
        QFETCH(QByteArray, config);
        QFETCH(QString, destination);
        QFETCH(bool, written);
        Flows flows;
        QVERIFY(config.isEmpty() || writeFile(flows.store.getConfigPath(), config));
        flows.views.destination = flows.path(destination);
        flows.backup.runBackup();
        QCOMPARE(flows.views.suggestedName, QStringLiteral("Paneforge-backup-2025-03-14.json"));
        QCOMPARE(flows.shown.last().startsWith("warning Backup failed: "), !written);
        const QByteArray bytes = readAll(flows.path(destination));
        QCOMPARE(!bytes.isEmpty(), written);
        if (written) {
            const auto document = SettingsBackupRestore::document(bytes);
            QVERIFY(document.config == flows.store.loadConfig());
            QCOMPARE(document.appVersion, QStringLiteral("1.2.3"));
        }
    }

    void restore_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("confirm");
        QTest::addColumn<QString>("warning");
        const QByteArray backup = SettingsBackupEncoder::encode(
            PaneforgeConfig::makeDefault().withCellMarginPoints(20), kNow, "1.2.3");
        QByteArray newer = backup;
        newer.replace("\"formatVersion\" : 1", "\"formatVersion\" : 2");
        QByteArray foreign = backup;
        foreign.replace("paneforge-backup", "Paneforge-backup");
        QTest::newRow("restored") << backup << true << "";
        QTest::newRow("preview cancelled") << backup << false << "";
        QTest::newRow("missing file") << QByteArray() << true << "no such file";
        QTest::newRow("not JSON") << QByteArray("not json") << true << "";
        QTest::newRow("not a backup") << foreign << true << "This file is not a Paneforge backup.";
        QTest::newRow("newer format") << newer << true << "This backup format is not supported.";
    }
    void restore() {
        QFETCH(QByteArray, file);
        QFETCH(bool, confirm);
        QFETCH(QString, warning);
        Flows flows;
        const QByteArray before = flows.configBytes();
        const QString path = flows.path("backup.json");
        QVERIFY(file.isEmpty() || writeFile(path, file));
        flows.views.source = path;
        flows.views.confirm = confirm;
        flows.restore.runRestore();
        const bool valid = flows.shown.contains("restore.preview");
        const bool restored = valid && confirm;
        QCOMPARE(flows.posts, restored ? 1 : 0);
        QCOMPARE(flows.configBytes() == before, !restored);
        QCOMPARE(flows.shown.last().startsWith("warning Restore failed: "), !valid);
        QVERIFY2(flows.shown.last().contains(warning), qPrintable(flows.shown.last()));
    }

    void restoreThatCannotBeSaved() {
        Flows flows;
        const QString config = flows.store.getConfigPath();
        QVERIFY(QFile::remove(config) && QDir().mkpath(config)); // a folder where the file goes
        flows.views.confirm = true;
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError,
                                 flows.restore.restoreLoaded(SettingsBackupEncoder::makeDocument(
                                     PaneforgeConfig::makeDefault(), kNow, "1.2.3")));
        QCOMPARE(flows.posts, 0);
    }
};

QTEST_GUILESS_MAIN(SettingsBackupControllersTest)
#include "tst_settings_backup_controllers.moc"
