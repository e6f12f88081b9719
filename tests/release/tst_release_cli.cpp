#include "../support/expected_text.h"
#include "release/release_cli.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge::release;

namespace {

struct Result {
    int code;
    QString out;
    QString err;
};

Result run(const QStringList& args, const QByteArray& standardInput = {}) {
    QString out, err;
    QTextStream outStream(&out), errStream(&err);
    ReleaseCliEnvironment environment;
    environment.now = [] { return QDateTime(QDate(2026, 11, 23), QTime(9, 0), Qt::UTC); };
    environment.standardInput = [standardInput] { return standardInput; };
    environment.minimumSystemVersion = QStringLiteral("12.0");
    const int code = runReleaseCli(args, outStream, errStream, environment);
    outStream.flush();
    errStream.flush();
    return {code, out, err};
}

QString writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("cannot write %s", qPrintable(path));
    }
    file.write(bytes);
    return path;
}

const QString kSignature = QString::fromLatin1(QByteArray(64, 'k').toBase64());

const QByteArray kListing =
    "  1) 1111111111111111111111111111111111111111 \"Apple Development: J (AB12CD34EF)\"\n"
    "  2) 2222222222222222222222222222222222222222 \"Developer ID Application: J (TEAM123456)\"\n"
    "     2 valid identities found\n";

} // namespace

// The command line over the release library: each command's arguments, files, output and exit
// codes. What the library decides (version order, feed and item rules, identities, release
// folders) its own tests cover.
class ReleaseCliTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Run in a folder DIR holding Paneforge-1.0.dmg (10 bytes), release/ with the 1.2.1 disk image,
    // dirty/ with it and a 1.2.0 one, the 1.2.1 bundle's Info.plist, and identities.txt (a listing
    // without a Developer ID). "SIG" is a signature.
    void commands_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        const auto row = [](const char* tag, const QStringList& args, int code, const QString& out,
                            const QString& err, const QByteArray& input = {}) {
            QTest::newRow(tag) << args << input << code << out << err;
        };
        const auto item = [](const QStringList& extra, const QString& file = "Paneforge-1.0.dmg",
                             const QString& url = "https://x.org/Paneforge-1.0.dmg") {
            return QStringList{"item",  "DIR/" + file, "--version",   "1.0",
                               "--url", url,           "--signature", "SIG"} +
                   extra;
        };
        row("older", {"compare", "1.2", "1.10"}, 0, "<\n", "");
        row("malformed", {"compare", "1.2", "1.2-beta"}, 1, "",
            "paneforge-release: “1.2-beta” is not a version: Sparkle ignores*");
        row("help", {"--help"}, 0, "usage: paneforge-release compare A B\n*", "");
        row("version", {"--version"}, 0, "paneforge-release " PANEFORGE_VERSION "\n", "");
        row("unknown option", {"compare", "1", "2", "--fast"}, 2, "",
            "paneforge-release: unknown option “--fast”\n*");

        row("item: the file's size", item({}), 0, "*length=\"10\"*", "");
        row("item: now as the date", item({}), 0,
            "*<pubDate>Mon, 23 Nov 2026 09:00:00 +0000</pubDate>*", "");
        row("item: the build's minimum system", item({}), 0, "*minimumSystemVersion>12.0.0<*", "");
        row("item: date", item({"--date", "2026-12-01T08:00:00Z"}), 0,
            "*Tue, 01 Dec 2026 08:00:00 +0000*", "");
        row("item: release notes", item({"--release-notes", "https://x.org/1.0.html"}), 0,
            "*<sparkle:releaseNotesLink>https://x.org/1.0.html<*", "");
        row("item: missing value", item({"--title"}), 2, "",
            "paneforge-release: --title needs a value\n*");
        row("item: other file's URL",
            item({}, "Paneforge-1.0.dmg", "https://x.org/Paneforge-0.9.dmg"), 1, "",
            "paneforge-release: the URL downloads “Paneforge-0.9.dmg”, but the file is "
            "“Paneforge-1.0.dmg”\n");
        // The signature is checked against the file's own size.
        row("item: other file's signature",
            QStringList{"item", "DIR/Paneforge-1.0.dmg", "--version", "1.0", "--url",
                        "https://x.org/Paneforge-1.0.dmg", "--signature",
                        "sparkle:edSignature=\"SIG\" length=\"99\""},
            1, "", "*a file of 99 bytes, but this one has 10 bytes: sign this file\n");
        row("item: no file", item({}, "nothing.dmg", "https://x.org/nothing.dmg"), 1, "",
            "paneforge-release: DIR/nothing.dmg: no such file\n");
        row("item: no version",
            {"item", "DIR/Paneforge-1.0.dmg", "--url", "https://x.org/Paneforge-1.0.dmg",
             "--signature", "SIG"},
            2, "", "paneforge-release: --version is required\n*");

        row("check: from Info.plist", {"check", "DIR/release", "--info-plist", "DIR/Info.plist"}, 0,
            "Paneforge-1.2.1.dmg\n", "");
        row("check: an older image left", {"check", "DIR/dirty", "--bundle-version", "1.2.1"}, 1,
            "Paneforge-1.2.1.dmg\n",
            "paneforge-release: Paneforge-1.2.0.dmg: version 1.2.0, but the bundle is version "
            "1.2.1\n");
        row("check: no bundle version", {"check", "DIR/release"}, 2, "",
            "paneforge-release: check needs either --bundle-version or --info-plist\n*");
        row("check: not a property list",
            {"check", "DIR/release", "--info-plist", "DIR/release/Paneforge-1.2.1.dmg"}, 1, "",
            "paneforge-release: DIR/release/Paneforge-1.2.1.dmg: not XML: *");

        row("identity from standard input", {"identity"}, 0,
            "2222222222222222222222222222222222222222\n",
            "paneforge-release: using “Developer ID Application: J (TEAM123456)”\n", kListing);
        row("identity from a file", {"identity", "DIR/identities.txt"}, 0,
            "1111111111111111111111111111111111111111\n",
            "paneforge-release: warning: “Apple Development: J (AB12CD34EF)” is not a Developer "
            "ID*");
        row("identity: developer id required",
            {"identity", "DIR/identities.txt", "--require-developer-id"}, 1, "",
            "paneforge-release: no Developer ID Application identity*");
    }

    void commands() {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, input);
        QFETCH(int, code);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QTemporaryDir dir;
        writeFile(dir.filePath("Paneforge-1.0.dmg"), QByteArray(10, 'd'));
        writeFile(dir.filePath("release/Paneforge-1.2.1.dmg"), "disk image");
        writeFile(dir.filePath("dirty/Paneforge-1.2.1.dmg"), "disk image");
        writeFile(dir.filePath("dirty/Paneforge-1.2.0.dmg"), "x");
        writeFile(dir.filePath("Info.plist"), "<plist><dict><key>CFBundleShortVersionString</key>"
                                              "<string>1.2.1</string></dict></plist>");
        writeFile(dir.filePath("identities.txt"),
                  QByteArray(kListing).replace("Developer ID Application", "Apple Distribution"));
        args.replaceInStrings("DIR", dir.path()).replaceInStrings("SIG", kSignature);
        const Result result = run(args, input);
        QCOMPARE(result.code, code);
        QVERIFY2(matchesExpected(result.out, out.replace("DIR", dir.path())),
                 qPrintable(result.out));
        QVERIFY2(matchesExpected(result.err, err.replace("DIR", dir.path())),
                 qPrintable(result.err));
    }

    void feedFromItemsAndAnEarlierFeed() {
        QTemporaryDir dir;
        const auto itemFile = [&](const QString& version) {
            const QString name = "Paneforge-" + version + ".dmg";
            writeFile(dir.filePath(name), "disk image");
            const Result item = run({"item", dir.filePath(name), "--version", version, "--url",
                                     "https://x.org/" + name, "--signature", kSignature});
            return writeFile(dir.filePath("items/" + version + ".xml"), item.out.toUtf8());
        };
        const QString earlier = itemFile("1.0");
        const QStringList feed = {"feed", "--title", "Paneforge", "--link", "https://x.org/"};
        const QString firstFeed =
            writeFile(dir.filePath("appcast.xml"), run(feed + QStringList{earlier}).out.toUtf8());

        const Result second =
            run(feed + QStringList{itemFile("1.10"), firstFeed, itemFile("1.10b1")});
        QCOMPARE(second.err, QString());
        QCOMPARE(second.code, 0);
        const qsizetype newest = second.out.indexOf("<sparkle:version>1.10</");
        const qsizetype beta = second.out.indexOf("<sparkle:version>1.10b1</");
        QVERIFY(newest > 0 && newest < beta && beta < second.out.indexOf("<sparkle:version>1.0</"));

        // Errors name the files they come from.
        const Result again = run(feed + QStringList{firstFeed, earlier});
        QCOMPARE(again.code, 1);
        QCOMPARE(again.err, QStringLiteral("paneforge-release: version 1.0 would be in the feed "
                                           "twice: %1 and %2 (one item per version)\n")
                                .arg(firstFeed, earlier));
    }
};

QTEST_GUILESS_MAIN(ReleaseCliTest)
#include "tst_release_cli.moc"
