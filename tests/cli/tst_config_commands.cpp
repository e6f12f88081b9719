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
        QString out;
        QString err;
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        CliEnvironment environment;
        environment.configDirectory = [this] { return dir.path(); };
        environment.readAnswer = [answer] { return answer; };
        const int code = runCli(args, outStream, errStream, environment);
        outStream.flush();
        errStream.flush();
        return {code, out, err};
    }
    // Arguments as a shell in this locale would pass them.
    Result run(const QStringList& args, std::optional<QString> answer = std::nullopt) {
        QList<QByteArray> native;
        for (const QString& arg : args) {
            native << QFile::encodeName(arg);
        }
        return run(native, answer);
    }
    QByteArray read(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QString& path, const QByteArray& bytes) const {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
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
        const QString notRegular = "paneforge: %1: it is a %2, not a regular file\n";
        const QByteArray otherFormat =
            R"({"format":"something-else","formatVersion":1,"exportedAt":"2025-03-14T09:26:53Z",)"
            R"("appVersion":"1","config":{"displays":{},"defaultLayout":{"id":"d","name":"D",)"
            R"("horizontalSplits":[],"verticalSplits":[]},"cellMarginPoints":8}})";
        row("config path", {"config", "path"}, 0, "@HOME/Paneforge/config.json\n", "");
        row("config print: the defaults", {"config", "print"}, 0, defaults() + "\n", "");
        row("config check: none yet", {"config", "check"}, 1, "",
            "paneforge: @HOME/Paneforge/config.json: no such file\n");
        row("config check: valid", {"config", "check", "@FILE"}, 0, "OK\n", "", defaults());
        row("config print: a file", {"config", "print", "@FILE"}, 0, defaults() + "\n", "",
            defaults());
        row("config check: missing key", {"config", "check", "@FILE"}, 1, "", "*defaultLayout*",
            R"({"displays":{},"cellMarginPoints":8})");
        row("config check: syntax error on line 3", {"config", "check", "@FILE"}, 1, "", "*line 3*",
            "{\n  \"displays\" : {},\n  oops\n}");
        // Only regular files are read: a named pipe would block the reader for good, a device
        // never ends.
        row("config check: named pipe", {"config", "check", "@PIPE"}, 1, "",
            notRegular.arg("@PIPE", "named pipe"));
        row("config print: named pipe", {"config", "print", "@PIPE"}, 1, "",
            notRegular.arg("@PIPE", "named pipe"));
        row("backup check: named pipe", {"backup", "check", "@PIPE"}, 1, "",
            notRegular.arg("@PIPE", "named pipe"));
        row("backup check: device", {"backup", "check", "/dev/zero"}, 1, "",
            notRegular.arg("/dev/zero", "device"));
        row("config print: device", {"config", "print", "/dev/zero"}, 1, "",
            notRegular.arg("/dev/zero", "device"));
        row("config check: folder", {"config", "check", "/"}, 1, "", notRegular.arg("/", "folder"));
        row("backup check: not a backup", {"backup", "check", "@FILE"}, 1, "",
            "paneforge: @FILE: This file is not a Paneforge backup.*", otherFormat);
        row("backup restore: not a backup", {"backup", "restore", "@FILE", "--yes"}, 1, "",
            "paneforge: @FILE: This file is not a Paneforge backup.*", otherFormat);
        row("backup check: no file", {"backup", "check", "@FILE"}, 1, "",
            "paneforge: @FILE: no such file\n");
        row("backup check: file missing", {"backup", "check"}, 2, "",
            "paneforge: backup check takes one FILE\nusage: paneforge*");
        row("backup check: unknown option", {"backup", "check", "@FILE", "--force"}, 2, "",
            "paneforge: unknown option “--force”\nusage: paneforge*", otherFormat);
        row("help", {"--help"}, 0, "usage: paneforge [--help | --version]\n*", "");
        row("version", {"--version"}, 0, "Paneforge " PANEFORGE_VERSION "\n", "");
        row("unknown command", {"frobnicate"}, 2, "",
            "paneforge: unknown command “frobnicate”\nusage: paneforge*");
        row("unknown config command", {"config", "edit"}, 2, "",
            "paneforge: unknown config command “edit”\nusage: paneforge*");
        row("unknown option", {"config", "check", "--strict"}, 2, "", "*\nusage: paneforge*");
        row("too many files", {"config", "print", "a", "b"}, 2, "",
            "paneforge: config print takes at most one FILE\nusage: paneforge*");
        row("unknown agent option", {"--frobnicate"}, 2, "",
            "paneforge: unknown option “--frobnicate”\nusage: paneforge*");
        row("version takes nothing more", {"--version", "now"}, 2, "",
            "paneforge: --version takes no arguments\nusage: paneforge*");
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
        if (!contents.isEmpty()) {
            home.write(file, contents);
        }
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

    // A backup holds the whole configuration; restoring it asks first, unless told --yes.
    void exportCheckAndRestore_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<std::optional<QString>>("answer");
        QTest::addColumn<bool>("restored");
        QTest::newRow("yes") << QStringList{} << std::optional<QString>("y") << true;
        QTest::newRow("no") << QStringList{} << std::optional<QString>("n") << false;
        QTest::newRow("end of input") << QStringList{} << std::optional<QString>() << false;
        QTest::newRow("--yes asks nothing")
            << QStringList{"--yes"} << std::optional<QString>() << true;
    }
    void exportCheckAndRestore() {
        QFETCH(QStringList, options);
        QFETCH(std::optional<QString>, answer);
        QFETCH(bool, restored);
        Home home;
        const auto saved = PaneforgeConfig::makeDefault().withCellMarginPoints(3);
        home.store.saveConfig(saved);
        const QByteArray savedBytes = home.read(home.store.getConfigPath());
        const QString file = home.dir.filePath("backup.json");
        QCOMPARE(home.run({"backup", "export", file}).out, "Backup written to " + file + "\n");
        QVERIFY(SettingsBackupRestore::liveConfig(home.read(file)) == saved);
        QCOMPARE(home.run({"backup", "export", file}).err,
                 "paneforge: " + file + " already exists; use --force to overwrite it\n");
        QCOMPARE(home.run({"backup", "export", file, "--force"}).code, 0);
        const Result check = home.run({"backup", "check", file});
        QCOMPARE(check.code, 0);
        QVERIFY(check.out.contains("Version: " PANEFORGE_VERSION));
        QVERIFY(check.out.contains("Default: Default"));

        home.store.saveConfig(PaneforgeConfig::makeDefault().withCellMarginPoints(20));
        const QByteArray changedBytes = home.read(home.store.getConfigPath());
        const Result restore = home.run(QStringList{"backup", "restore", file} + options, answer);
        QCOMPARE(restore.code, restored ? 0 : 1);
        QVERIFY(restore.out.contains("Default: Default"));
        QCOMPARE(home.read(home.store.getConfigPath()), restored ? savedBytes : changedBytes);
    }
};

QTEST_GUILESS_MAIN(ConfigCommandsTest)
#include "tst_config_commands.moc"
