#include "cli/cli.h"
#include "core/backup/settings_backup.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

using namespace paneforge;

namespace {
int run(const QStringList& args, const QString& configDirectory, QString* out = nullptr,
        QString* err = nullptr, std::optional<QString> answer = std::nullopt) {
    QString o;
    QString e;
    QTextStream outStream(&o);
    QTextStream errStream(&e);
    CliEnvironment environment;
    environment.configDirectory = [configDirectory] { return configDirectory; };
    environment.readAnswer = [answer] { return answer; };
    const int code = runCli(args, outStream, errStream, environment);
    outStream.flush();
    errStream.flush();
    if (out) {
        *out = o;
    }
    if (err) {
        *err = e;
    }
    return code;
}
} // namespace

class BackupCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exportThenCheck() {
        QTemporaryDir home;
        const ConfigStore store(LoggerFactory::makeLogger("ConfigStore"),
                                [&] { return home.path(); });
        const auto config = PaneforgeConfig::makeDefault().withCellMarginPoints(3);
        store.saveConfig(config);
        const QString file = home.filePath("backup.json");

        QCOMPARE(run({"backup", "export", file}, home.path()), 0);
        QFile written(file);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(SettingsBackupRestore::liveConfig(written.readAll()) == config);

        QString err;
        QCOMPARE(run({"backup", "export", file}, home.path(), nullptr, &err), 1);
        QVERIFY(err.contains("--force"));
        QCOMPARE(run({"backup", "export", file, "--force"}, home.path()), 0);

        QString out;
        QCOMPARE(run({"backup", "check", file}, home.path(), &out), 0);
        QVERIFY(out.contains("Version: " PANEFORGE_VERSION));
        QVERIFY(out.contains("Default: Default"));
    }

    void checkRefusesWhatIsNotABackup() {
        QTemporaryDir home;
        const QString file = home.filePath("config.json");
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(
            R"({"format":"something-else","formatVersion":1,"exportedAt":"2025-03-14T09:26:53Z","appVersion":"1","config":{"displays":{},"defaultLayout":{"id":"d","name":"D","horizontalSplits":[],"verticalSplits":[]},"cellMarginPoints":8}})");
        f.close();
        QString err;
        QCOMPARE(run({"backup", "check", file}, home.path(), nullptr, &err), 1);
        QVERIFY(err.contains("This file is not a Paneforge backup."));
        QCOMPARE(
            run({"backup", "check", home.filePath("missing.json")}, home.path(), nullptr, &err), 1);
        QVERIFY(err.contains("no such file"));
        QCOMPARE(run({"backup", "check"}, home.path()), 2);
        QCOMPARE(run({"backup", "check", file, "--force"}, home.path()), 2);
        QCOMPARE(run({"backup", "restore", file, "--yes"}, home.path()), 1);
        const ConfigStore store(LoggerFactory::makeLogger("ConfigStore"),
                                [&] { return home.path(); });
        QVERIFY(!QFile::exists(store.getConfigPath()));
    }

    void restoreAsksThenReplacesTheWholeConfiguration_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<std::optional<QString>>("answer");
        QTest::addColumn<bool>("restored");
        QTest::newRow("yes") << QStringList{} << std::optional<QString>("y") << true;
        QTest::newRow("no") << QStringList{} << std::optional<QString>("n") << false;
        QTest::newRow("end of input") << QStringList{} << std::optional<QString>() << false;
        QTest::newRow("--yes asks nothing")
            << QStringList{"--yes"} << std::optional<QString>() << true;
    }

    void restoreAsksThenReplacesTheWholeConfiguration() {
        QFETCH(QStringList, options);
        QFETCH(std::optional<QString>, answer);
        QFETCH(bool, restored);
        QTemporaryDir home;
        const ConfigStore store(LoggerFactory::makeLogger("ConfigStore"),
                                [&] { return home.path(); });
        const auto saved = PaneforgeConfig::makeDefault().withCellMarginPoints(3);
        store.saveConfig(saved);
        const QString file = home.filePath("backup.json");
        QCOMPARE(run({"backup", "export", file}, home.path()), 0);
        QFile config(store.getConfigPath());
        QVERIFY(config.open(QIODevice::ReadOnly));
        const QByteArray savedBytes = config.readAll();
        config.close();
        store.saveConfig(PaneforgeConfig::makeDefault().withCellMarginPoints(20));
        const QByteArray changedBytes = ConfigStore::encodeConfig(store.loadConfig());

        QString out;
        QCOMPARE(run(QStringList{"backup", "restore", file} + options, home.path(), &out, nullptr,
                     answer),
                 restored ? 0 : 1);
        QVERIFY(out.contains("Default: Default"));
        QVERIFY(config.open(QIODevice::ReadOnly));
        QCOMPARE(config.readAll(), restored ? savedBytes : changedBytes);
    }
};

QTEST_GUILESS_MAIN(BackupCommandsTest)
#include "tst_backup_commands.moc"
