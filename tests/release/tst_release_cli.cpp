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

const QDateTime kNow(QDate(2026, 11, 23), QTime(9, 0), Qt::UTC);

Result run(const QStringList& args, const QByteArray& standardInput = {}) {
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    ReleaseCliEnvironment environment;
    environment.now = [] { return kNow; };
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

QString signature() {
    return QString::fromLatin1(QByteArray(64, 'k').toBase64());
}

// `item` for a disk image of `size` bytes in `folder`.
Result item(const QString& folder, const QString& version, qint64 size = 10,
            const QStringList& extra = {}) {
    const QString name = QStringLiteral("Paneforge-%1.dmg").arg(version);
    const QString path = writeFile(folder + "/" + name, QByteArray(size, 'd'));
    return run(QStringList{"item", path, "--version", version, "--url",
                           "https://downloads.example.org/" + name, "--signature", signature()} +
               extra);
}

} // namespace

class ReleaseCliTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void compare_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::newRow("older") << QStringList{"compare", "1.2", "1.10"} << 0 << "<\n"
                               << "";
        QTest::newRow("newer") << QStringList{"compare", "1.2.1", "1.2"} << 0 << ">\n"
                               << "";
        QTest::newRow("same") << QStringList{"compare", "1.2", "1.2.0"} << 0 << "=\n"
                              << "";
        QTest::newRow("pre-release") << QStringList{"compare", "1.2rc1", "1.2"} << 0 << "<\n"
                                     << "";
        QTest::newRow("malformed")
            << QStringList{"compare", "1.2", "1.2-beta"} << 1 << ""
            << "paneforge-release: “1.2-beta” is not a version: Sparkle ignores everything from "
               "a hyphen on; write a pre-release as 1.2b1 or 1.2rc1\n";
        QTest::newRow("one version") << QStringList{"compare", "1.2"} << 2 << ""
                                     << "paneforge-release: compare takes two versions\n";
    }

    void compare() {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, out);
        QFETCH(QString, err);
        const Result result = run(args);
        QCOMPARE(result.code, code);
        QCOMPARE(result.out, out);
        QCOMPARE(result.err.isEmpty(), err.isEmpty());
        QVERIFY2(err.isEmpty() || result.err.startsWith(err), qPrintable(result.err));
    }

    void usage() {
        const Result help = run({"--help"});
        QCOMPARE(help.code, 0);
        QVERIFY(help.out.startsWith("usage: paneforge-release compare A B\n"));
        const Result version = run({"--version"});
        QCOMPARE(version.out, QStringLiteral("paneforge-release %1\n").arg(PANEFORGE_VERSION));

        const Result none = run({});
        QCOMPARE(none.code, 2);
        QVERIFY(none.err.startsWith("paneforge-release: no command given\nusage:"));
        QCOMPARE(run({"publish"}).code, 2);
        QVERIFY(run({"compare", "1", "2", "--fast"}).err.contains("unknown option “--fast”"));
    }

    void itemForOneFile() {
        QTemporaryDir dir;
        const Result result = item(dir.path(), "1.2.1", 42);
        QCOMPARE(result.err, QString());
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out,
                 "<item xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">\n"
                 "    <title>Version 1.2.1</title>\n"
                 "    <pubDate>Mon, 23 Nov 2026 09:00:00 +0000</pubDate>\n"
                 "    <sparkle:version>1.2.1</sparkle:version>\n"
                 "    <sparkle:shortVersionString>1.2.1</sparkle:shortVersionString>\n"
                 "    <sparkle:minimumSystemVersion>12.0.0</sparkle:minimumSystemVersion>\n"
                 "    <enclosure url=\"https://downloads.example.org/Paneforge-1.2.1.dmg\" "
                 "length=\"42\" type=\"application/octet-stream\" sparkle:edSignature=\"" +
                     signature() + "\"/>\n</item>\n");
    }

    void itemOptions() {
        QTemporaryDir dir;
        const Result result = item(dir.path(), "1.3", 10,
                                   {"--short-version=1.3", "--date", "2026-12-01T08:00:00Z",
                                    "--title", "Paneforge 1.3", "--minimum-system-version", "13.1",
                                    "--release-notes", "https://paneforge.example.org/1.3.html"});
        QCOMPARE(result.code, 0);
        QVERIFY(result.out.contains("<title>Paneforge 1.3</title>"));
        QVERIFY(result.out.contains("<pubDate>Tue, 01 Dec 2026 08:00:00 +0000</pubDate>"));
        QVERIFY(result.out.contains("<sparkle:minimumSystemVersion>13.1.0<"));
        QVERIFY(result.out.contains(
            "<sparkle:releaseNotesLink>https://paneforge.example.org/1.3.html<"));
    }

    void itemRefusals_data() {
        QTest::addColumn<QStringList>("extra");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("err");
        QTest::newRow("two versions")
            << QStringList{"--version", "1.0"} << 2 << "--version is given twice";
        QTest::newRow("signature twice")
            << QStringList{"--signature"} << 2 << "--signature is given twice";
        QTest::newRow("bad date") << QStringList{"--date", "soon"} << 1 << "“soon” is not a date";
        QTest::newRow("bad system") << QStringList{"--minimum-system-version", "Sonoma"} << 1
                                    << "“Sonoma” is not a macOS version";
        QTest::newRow("missing value") << QStringList{"--title"} << 2 << "--title needs a value";
    }

    void itemRefusals() {
        QFETCH(QStringList, extra);
        QFETCH(int, code);
        QFETCH(QString, err);
        QTemporaryDir dir;
        const Result result = item(dir.path(), "1.0", 10, extra);
        QCOMPARE(result.code, code);
        QVERIFY2(result.err.contains(err), qPrintable(result.err));
        QCOMPARE(result.out, QString());
    }

    void itemChecksTheFile() {
        QTemporaryDir dir;
        const QString path = writeFile(dir.filePath("Paneforge-1.0.dmg"), QByteArray(100, 'd'));
        const QStringList base = {"item", path, "--version", "1.0"};

        const Result otherUrl = run(base + QStringList{"--url", "https://x.org/Paneforge-0.9.dmg",
                                                       "--signature", signature()});
        QCOMPARE(otherUrl.code, 1);
        QCOMPARE(otherUrl.err, QString("paneforge-release: the URL downloads “Paneforge-0.9.dmg”, "
                                       "but the file is “Paneforge-1.0.dmg”\n"));

        const Result otherLength =
            run(base +
                QStringList{
                    "--url", "https://x.org/Paneforge-1.0.dmg", "--signature",
                    QStringLiteral("sparkle:edSignature=\"%1\" length=\"99\"").arg(signature())});
        QCOMPARE(otherLength.code, 1);
        QVERIFY(otherLength.err.contains("a file of 99 bytes, but this one has 100 bytes"));

        const Result plainHttp = run(base + QStringList{"--url", "http://x.org/Paneforge-1.0.dmg",
                                                        "--signature", signature()});
        QCOMPARE(plainHttp.code, 1);
        QVERIFY(plainHttp.err.contains("must use https"));

        const Result missing =
            run({"item", dir.filePath("nothing.dmg"), "--version", "1.0", "--url",
                 "https://x.org/nothing.dmg", "--signature", signature()});
        QCOMPARE(missing.code, 1);
        QVERIFY(missing.err.endsWith("nothing.dmg: no such file\n"));

        QCOMPARE(run({"item", path, "--url", "https://x.org/Paneforge-1.0.dmg", "--signature",
                      signature()})
                     .err.section('\n', 0, 0),
                 QString("paneforge-release: --version is required"));
    }

    void feedFromItemsAndAnEarlierFeed() {
        QTemporaryDir dir;
        const QString earlier =
            writeFile(dir.filePath("items/1.0.xml"), item(dir.path(), "1.0").out.toUtf8());
        const QString current =
            writeFile(dir.filePath("items/1.10.xml"), item(dir.path(), "1.10").out.toUtf8());
        const QString beta =
            writeFile(dir.filePath("items/1.10b1.xml"), item(dir.path(), "1.10b1").out.toUtf8());
        const QStringList channel = {"--title", "Paneforge", "--link",
                                     "https://paneforge.example.org/"};

        const Result first = run(QStringList{"feed"} + channel + QStringList{earlier});
        QCOMPARE(first.code, 0);
        const QString firstFeed = writeFile(dir.filePath("appcast.xml"), first.out.toUtf8());

        const Result second =
            run(QStringList{"feed"} + channel + QStringList{current, firstFeed, beta});
        QCOMPARE(second.err, QString());
        QCOMPARE(second.code, 0);
        const qsizetype newest = second.out.indexOf("<sparkle:version>1.10</");
        const qsizetype betaAt = second.out.indexOf("<sparkle:version>1.10b1</");
        const qsizetype oldest = second.out.indexOf("<sparkle:version>1.0</");
        QVERIFY(newest > 0 && newest < betaAt && betaAt < oldest);
        QVERIFY(second.out.contains(
            "<description>The newest versions of Paneforge, with links to their downloads."
            "</description>"));

        const Result again = run(QStringList{"feed"} + channel + QStringList{firstFeed, earlier});
        QCOMPARE(again.code, 1);
        QCOMPARE(again.err, QStringLiteral("paneforge-release: version 1.0 would be in the feed "
                                           "twice: %1 and %2 (one item per version)\n")
                                .arg(firstFeed, earlier));

        const QString broken = writeFile(dir.filePath("broken.xml"), "<item>");
        const Result unreadable = run(QStringList{"feed"} + channel + QStringList{broken});
        QCOMPARE(unreadable.code, 1);
        QVERIFY(unreadable.err.startsWith("paneforge-release: " + broken + ": "));

        QCOMPARE(run(QStringList{"feed"} + channel).code, 2);
        QCOMPARE(run({"feed", "--title", "Paneforge", earlier}).err.section('\n', 0, 0),
                 QString("paneforge-release: --link is required"));
    }

    void checkReleaseFolder() {
        QTemporaryDir dir;
        const QString releases = dir.filePath("release");
        writeFile(releases + "/Paneforge-1.2.1.dmg", "disk image");
        const QString plist = writeFile(
            dir.filePath("Info.plist"),
            "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict><key>CFBundleShortVersionString"
            "</key><string>1.2.1</string></dict></plist>\n");

        const Result clean = run({"check", releases, "--info-plist", plist});
        QCOMPARE(clean.err, QString());
        QCOMPARE(clean.code, 0);
        QCOMPARE(clean.out, QString("Paneforge-1.2.1.dmg\n"));

        writeFile(releases + "/Paneforge-1.2.1-unsigned.dmg", "x");
        writeFile(releases + "/Paneforge-1.2.0.dmg", "x");
        QDir(releases).mkdir("Paneforge.app");
        const Result dirty = run({"check", releases, "--bundle-version", "1.2.1"});
        QCOMPARE(dirty.code, 1);
        QCOMPARE(dirty.out, QString("Paneforge-1.2.1.dmg\n"));
        QCOMPARE(
            dirty.err,
            QString("paneforge-release: Paneforge-1.2.0.dmg: version 1.2.0, but the bundle is "
                    "version 1.2.1\n"
                    "paneforge-release: Paneforge-1.2.1-unsigned.dmg: an unsigned build\n"
                    "paneforge-release: Paneforge.app: an application bundle: publish its disk "
                    "image instead\n"));

        const Result otherVersion = run({"check", releases, "--bundle-version", "1.3"});
        QCOMPARE(otherVersion.code, 1);
        QVERIFY(otherVersion.err.endsWith(releases + ": there is no Paneforge-1.3.dmg\n"));
        QVERIFY(otherVersion.err.contains("Paneforge-1.2.1.dmg: version 1.2.1, but the bundle is "
                                          "version 1.3\n"));

        QCOMPARE(run({"check", releases}).code, 2);
        QCOMPARE(run({"check", releases, "--bundle-version", "1", "--info-plist", plist}).code, 2);
        QCOMPARE(run({"check", dir.filePath("none"), "--bundle-version", "1"}).err,
                 "paneforge-release: " + dir.filePath("none") + ": no such folder\n");
        QCOMPARE(run({"check", releases, "--bundle-version", "v1"}).code, 1);
        const Result badPlist =
            run({"check", releases, "--info-plist", releases + "/Paneforge-1.2.0.dmg"});
        QCOMPARE(badPlist.code, 1);
        QVERIFY(badPlist.err.contains("Paneforge-1.2.0.dmg: not XML") ||
                badPlist.err.contains("Paneforge-1.2.0.dmg: not a property list"));
    }

    void identity() {
        const QByteArray listing =
            "  1) 1111111111111111111111111111111111111111 \"Apple Development: Jane Doe "
            "(AB12CD34EF)\"\n"
            "  2) 2222222222222222222222222222222222222222 \"Developer ID Application: Jane Doe "
            "(TEAM123456)\"\n"
            "     2 valid identities found\n";
        const Result fromInput = run({"identity"}, listing);
        QCOMPARE(fromInput.code, 0);
        QCOMPARE(fromInput.out, QString("2222222222222222222222222222222222222222\n"));
        QCOMPARE(fromInput.err, QString("paneforge-release: using “Developer ID Application: Jane "
                                        "Doe (TEAM123456)”\n"));

        QTemporaryDir dir;
        const QString file = writeFile(
            dir.filePath("identities.txt"),
            QByteArray(listing).replace("Developer ID Application", "Apple Distribution"));
        const Result fallback = run({"identity", file});
        QCOMPARE(fallback.code, 0);
        QCOMPARE(fallback.out, QString("1111111111111111111111111111111111111111\n"));
        QVERIFY(
            fallback.err.startsWith("paneforge-release: warning: “Apple Development: Jane Doe "
                                    "(AB12CD34EF)” is not a Developer ID Application identity"));

        const Result required = run({"identity", file, "--require-developer-id"});
        QCOMPARE(required.code, 1);
        QCOMPARE(required.out, QString());
        QVERIFY(required.err.contains("no Developer ID Application identity"));

        QCOMPARE(run({"identity", "-", "--team", "TEAM123456"}, listing).code, 0);
        QCOMPARE(run({"identity", "--team", "NOPE"}, listing).code, 1);
        QCOMPARE(run({"identity"}, "nothing here").code, 1);
        QCOMPARE(run({"identity", "a", "b"}).code, 2);
        QCOMPARE(run({"identity", "--require-developer-id=yes"}).code, 2);
    }
};

QTEST_GUILESS_MAIN(ReleaseCliTest)
#include "tst_release_cli.moc"
