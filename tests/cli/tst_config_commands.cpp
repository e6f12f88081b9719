#include "../support/expected_text.h"
#include "cli/cli.h"
#include "core/backup/settings_backup.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

using namespace paneforge;

namespace {

struct Result {
    int code;
    QString out;
    QString err;
};

// A configuration folder of its own, and the commands run over it.
struct Home {
    QTemporaryDir dir;
    ConfigStore store{LoggerFactory::makeLogger("ConfigStore"), [this] { return dir.path(); }};

    Result run(const QList<QByteArray>& args, std::optional<QString> answer = std::nullopt) {
        Result result{0, {}, {}};
        QTextStream out(&result.out);
        QTextStream err(&result.err);
        CliEnvironment environment;
        environment.configDirectory = [this] { return dir.path(); };
        environment.readAnswer = [answer] { return answer; };
        result.code = runCli(args, out, err, environment);
        return result;
    }
    // Arguments as a shell in this locale would pass them.
    Result run(const QStringList& args, std::optional<QString> answer = std::nullopt) {
        QList<QByteArray> native;
        for (const QString& arg : args) {
            native << QFile::encodeName(arg);
        }
        return run(native, answer);
    }
    QByteArray config() const {
        QFile file(store.getConfigPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

QByteArray defaults() {
    return ConfigStore::encodeConfig(PaneforgeConfig::makeDefault());
}

} // namespace

class ConfigCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Run in an empty configuration folder @HOME, which they leave without a configuration, with
    // @FILE holding `contents` (when given) and @PIPE a named pipe.
    void commands_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        const auto row = [](const char* tag, const QStringList& args, int code, const QString& out,
                            const QString& err, const QByteArray& contents = {}) {
            QTest::newRow(tag) << args << contents << code << out << err;
        };
        const QByteArray otherFormat =
            SettingsBackupEncoder::encode(PaneforgeConfig::makeDefault(),
                                          QDateTime::currentDateTimeUtc(), "1")
                .replace("paneforge-backup", "something-else");
        row("config path", {"config", "path"}, 0, "@HOME/Paneforge/config.json\n", "");
        row("config print: the defaults", {"config", "print"}, 0, defaults() + "\n", "");
        row("config check: none yet", {"config", "check"}, 1, "",
            "paneforge: @HOME/Paneforge/config.json: no such file\n");
        row("config check: valid", {"config", "check", "@FILE"}, 0, "OK\n", "", defaults());
        row("config check: syntax error on line 3", {"config", "check", "@FILE"}, 1, "", "*line 3*",
            "{\n  \"displays\" : {},\n  oops\n}");
        row("config check: named pipe", {"config", "check", "@PIPE"}, 1, "",
            "paneforge: @PIPE: it is a named pipe, not a regular file\n");
        row("backup check: device", {"backup", "check", "/dev/zero"}, 1, "",
            "paneforge: /dev/zero: it is a device, not a regular file\n");
        row("backup restore: not a backup", {"backup", "restore", "@FILE", "--yes"}, 1, "",
            "paneforge: @FILE: This file is not a Paneforge backup.*", otherFormat);
        row("backup check: file missing", {"backup", "check"}, 2, "",
            "paneforge: backup check takes one FILE\nusage: paneforge*");
        row("backup check: unknown option", {"backup", "check", "@FILE", "--force"}, 2, "",
            "paneforge: unknown option “--force”\nusage: paneforge*", otherFormat);
        row("help", {"--help"}, 0, "usage: paneforge [--help | --version]\n*", "");
        row("version", {"--version"}, 0, "Paneforge " PANEFORGE_VERSION "\n", "");
        row("unknown command", {"frobnicate"}, 2, "",
            "paneforge: unknown command “frobnicate”\nusage: paneforge*");
    }
    void commands() {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, contents);
        QFETCH(int, code);
        QFETCH(QString, out);
        QFETCH(QString, err);
        Home home;
        const QString file = home.dir.filePath("file.json");
        const QString pipe = home.dir.filePath("pipe");
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QFile written(file);
        QVERIFY(contents.isEmpty() ||
                (written.open(QIODevice::WriteOnly) && written.write(contents) == contents.size()));
        written.close();
        for (QString* text : {&out, &err}) {
            text->replace("@HOME", home.dir.path()).replace("@FILE", file).replace("@PIPE", pipe);
        }
        const Result result =
            home.run(args.replaceInStrings("@FILE", file).replaceInStrings("@PIPE", pipe));
        QCOMPARE(result.code, code);
        QVERIFY2(matchesExpected(result.out, out), qPrintable(result.out));
        QVERIFY2(matchesExpected(result.err, err), qPrintable(result.err));
        QVERIFY(!QFile::exists(home.store.getConfigPath()));
    }

    // A file name need not be valid in the locale's encoding; the system's bytes name the file.
    void fileNamesAreTakenByteForByte() {
        Home home;
        const QByteArray name = QFile::encodeName(home.dir.path()) + "/caf\xe9.json";
        const QByteArray bytes = defaults();
        const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        QVERIFY(fd >= 0);
        QCOMPARE(::write(fd, bytes.constData(), size_t(bytes.size())), ssize_t(bytes.size()));
        ::close(fd);
        const Result result = home.run(QList<QByteArray>{"config", "check", name});
        ::unlink(name.constData());
        QCOMPARE(result.out, "OK\n");
    }

    // A backup holds the whole configuration; restoring it asks first, unless told --yes (an
    // empty answer: there is no one to ask).
    void exportCheckAndRestore_data() {
        QTest::addColumn<QString>("answer");
        QTest::newRow("yes") << "y";
        QTest::newRow("no") << "n";
        QTest::newRow("--yes") << "";
    }
    void exportCheckAndRestore() {
        QFETCH(QString, answer);
        Home home;
        home.store.saveConfig(PaneforgeConfig::makeDefault().withCellMarginPoints(3));
        const QByteArray savedBytes = home.config();
        const QString file = home.dir.filePath("backup.json");
        QCOMPARE(home.run({"backup", "export", file}).out, "Backup written to " + file + "\n");
        QCOMPARE(home.run({"backup", "export", file}).err,
                 "paneforge: " + file + " already exists; use --force to overwrite it\n");
        QCOMPARE(home.run({"backup", "export", file, "--force"}).code, 0);
        QVERIFY(home.run({"backup", "check", file}).out.contains("Version: " PANEFORGE_VERSION));

        home.store.saveConfig(PaneforgeConfig::makeDefault().withCellMarginPoints(20));
        const QByteArray changedBytes = home.config();
        const bool yes = answer != "n";
        const Result restore = answer.isEmpty() ? home.run({"backup", "restore", file, "--yes"})
                                                : home.run({"backup", "restore", file}, answer);
        QCOMPARE(restore.code, yes ? 0 : 1);
        QVERIFY(restore.out.contains("Default: Default"));
        QCOMPARE(home.config(), yes ? savedBytes : changedBytes);
    }
};

QTEST_GUILESS_MAIN(ConfigCommandsTest)
#include "tst_config_commands.moc"
