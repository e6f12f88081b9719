#include "cli/cli.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>

using namespace paneforge;

namespace {

struct Result {
    int code;
    QString out;
    QString err;
};

Result run(const QStringList& args, const QString& configDirectory) {
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    CliEnvironment environment;
    environment.configDirectory = [configDirectory] { return configDirectory; };
    const int code = runCli(args, outStream, errStream, environment);
    outStream.flush();
    errStream.flush();
    return {code, out, err};
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class ConfigCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pathAndDefaults() {
        QTemporaryDir home;
        const auto path = run({"config", "path"}, home.path());
        QCOMPARE(path.code, 0);
        QCOMPARE(path.out, home.filePath("Paneforge/config.json") + "\n");

        const auto printed = run({"config", "print"}, home.path());
        QCOMPARE(printed.code, 0);
        QCOMPARE(printed.out.toUtf8(),
                 ConfigStore::encodeConfig(PaneforgeConfig::makeDefault()) + "\n");
        QVERIFY(!QFile::exists(home.filePath("Paneforge/config.json")));

        const auto missing = run({"config", "check"}, home.path());
        QCOMPARE(missing.code, 1);
        QVERIFY(missing.err.contains("no such file"));
    }

    void checkExplainsTheProblem_data() {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("mentions");
        QTest::newRow("valid") << ConfigStore::encodeConfig(PaneforgeConfig::makeDefault()) << 0
                               << "OK";
        QTest::newRow("missing key")
            << QByteArray(R"({"displays":{},"cellMarginPoints":8})") << 1 << "defaultLayout";
        QTest::newRow("syntax error on line 3")
            << QByteArray("{\n  \"displays\" : {},\n  oops\n}") << 1 << "line 3";
    }
    void checkExplainsTheProblem() {
        QFETCH(QByteArray, contents);
        QFETCH(int, code);
        QFETCH(QString, mentions);
        QTemporaryDir home;
        const QString file = home.filePath("edited.json");
        writeFile(file, contents);
        const auto result = run({"config", "check", file}, home.path());
        QCOMPARE(result.code, code);
        QVERIFY2((result.out + result.err).contains(mentions), qPrintable(result.out + result.err));
        if (code == 0) {
            QCOMPARE(run({"config", "print", file}, home.path()).out.toUtf8(), contents + "\n");
        }
    }

    // Whatever is at the path, the commands answer at once: only regular files are read, and a
    // named pipe (which would block the reader for good) or a device (which never ends) is refused.
    void inputsThatAreNotRegularFiles_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* tag, const QStringList& args, const char* kind) {
            QTest::newRow(tag) << args
                               << args.last() + ": it is a " + kind + ", not a regular file";
        };
        row("config check, named pipe", {"config", "check", "PIPE"}, "named pipe");
        row("config print, named pipe", {"config", "print", "PIPE"}, "named pipe");
        row("backup check, named pipe", {"backup", "check", "PIPE"}, "named pipe");
        row("backup check, device", {"backup", "check", "/dev/zero"}, "device");
        row("config print, device", {"config", "print", "/dev/zero"}, "device");
        row("config check, folder", {"config", "check", "/"}, "folder");
    }
    void inputsThatAreNotRegularFiles() {
        QFETCH(QStringList, args);
        QFETCH(QString, reason);
        QTemporaryDir home;
        const QString pipe = home.filePath("pipe");
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        args.replaceInStrings("PIPE", pipe);
        const auto result = run(args, home.path());
        QCOMPARE(result.code, 1);
        QCOMPARE(result.err, "paneforge: " + reason.replace("PIPE", pipe) + "\n");
    }

    // A file name need not be valid in the locale's encoding; the system's bytes name the file.
    void fileNamesAreTakenByteForByte() {
        QTemporaryDir home;
        const QByteArray name = QFile::encodeName(home.path()) + "/caf\xe9.json";
        QFile file(QString::fromLatin1("ignored"));
        {
            const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            QVERIFY(fd >= 0);
            QVERIFY(file.open(fd, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle));
            file.write(ConfigStore::encodeConfig(PaneforgeConfig::makeDefault()));
            file.close();
        }
        QString out;
        QString err;
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        CliEnvironment environment;
        environment.configDirectory = [&] { return home.path(); };
        QCOMPARE(
            runCli(QList<QByteArray>{"config", "check", name}, outStream, errStream, environment),
            0);
        outStream.flush();
        QCOMPARE(out, "OK\n");
    }

    void usageErrors_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::newRow("unknown command") << QStringList{"frobnicate"} << 2;
        QTest::newRow("unknown config command") << QStringList{"config", "edit"} << 2;
        QTest::newRow("unknown option") << QStringList{"config", "check", "--strict"} << 2;
        QTest::newRow("too many files") << QStringList{"config", "print", "a", "b"} << 2;
        QTest::newRow("help") << QStringList{"--help"} << 0;
        QTest::newRow("version") << QStringList{"--version"} << 0;
        QTest::newRow("unknown agent option") << QStringList{"--frobnicate"} << 2;
        QTest::newRow("version takes nothing more") << QStringList{"--version", "now"} << 2;
    }
    void usageErrors() {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QTemporaryDir home;
        const auto result = run(args, home.path());
        QCOMPARE(result.code, code);
        if (code == 2) {
            QVERIFY(result.err.contains("usage: paneforge"));
            QVERIFY(result.out.isEmpty());
        } else {
            QVERIFY(!result.out.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(ConfigCommandsTest)
#include "tst_config_commands.moc"
