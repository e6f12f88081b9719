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

// The command line over the release library: each command's arguments, files and exit codes. What
// the library decides (version order, feed and item rules, identities, release folders) its own
// tests cover.
class ReleaseCliTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void compare_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        const auto row = [](const char* tag, const QStringList& args, int code, const char* out,
                            const char* err) {
            QTest::newRow(tag) << args << code << QString(out) << QString(err);
        };
        row("older", {"compare", "1.2", "1.10"}, 0, "<\n", "");
        row("newer", {"compare", "1.2.1", "1.2"}, 0, ">\n", "");
        row("same", {"compare", "1.2", "1.2.0"}, 0, "=\n", "");
        row("malformed", {"compare", "1.2", "1.2-beta"}, 1, "",
            "paneforge-release: “1.2-beta” is not a version: Sparkle ignores everything from a "
            "hyphen on; write a pre-release as 1.2b1 or 1.2rc1\n");
        row("one version", {"compare", "1.2"}, 2, "",
            "paneforge-release: compare takes two versions\n");
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

    // `item` for a 10-byte Paneforge-1.0.dmg with the given extra arguments: the fragment is in
    // the item printed, or in the error when the code is not 0.
    void itemArguments_data() {
        QTest::addColumn<QStringList>("extra");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("fragment");
        const auto row = [](const char* tag, const QStringList& extra, int code,
                            const char* fragment) {
            QTest::newRow(tag) << extra << code << QString(fragment);
        };
        row("the file's size", {}, 0, "length=\"10\"");
        row("now as the date", {}, 0, "<pubDate>Mon, 23 Nov 2026 09:00:00 +0000</pubDate>");
        row("the build's minimum system", {}, 0, "minimumSystemVersion>12.0.0<");
        row("default title", {}, 0, "<title>Version 1.0</title>");
        row("title", {"--title", "Paneforge 1.0"}, 0, "<title>Paneforge 1.0</title>");
        row("date", {"--date", "2026-12-01T08:00:00Z"}, 0, "Tue, 01 Dec 2026 08:00:00 +0000");
        row("minimum system", {"--minimum-system-version", "13.1"}, 0, ">13.1.0<");
        row("short version", {"--short-version=1.0.1"}, 0, "<sparkle:shortVersionString>1.0.1<");
        row("release notes", {"--release-notes", "https://paneforge.example.org/1.0.html"}, 0,
            "<sparkle:releaseNotesLink>https://paneforge.example.org/1.0.html<");
        row("two versions", {"--version", "1.0"}, 2, "--version is given twice");
        row("signature twice", {"--signature"}, 2, "--signature is given twice");
        row("bad date", {"--date", "soon"}, 1, "“soon” is not a date");
        row("bad system", {"--minimum-system-version", "Sonoma"}, 1,
            "“Sonoma” is not a macOS version");
        row("missing value", {"--title"}, 2, "--title needs a value");
    }

    void itemArguments() {
        QFETCH(QStringList, extra);
        QFETCH(int, code);
        QFETCH(QString, fragment);
        QTemporaryDir dir;
        const Result result = item(dir.path(), "1.0", 10, extra);
        QCOMPARE(result.code, code);
        QVERIFY2((code == 0 ? result.out : result.err).contains(fragment),
                 qPrintable(result.out + result.err));
        QCOMPARE(result.out.isEmpty(), code != 0);
        QCOMPARE(result.err.isEmpty(), code == 0);
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
        // The signature is checked against the file's own size.
        const Result otherLength =
            run(base +
                QStringList{"--url", "https://x.org/Paneforge-1.0.dmg", "--signature",
                            QString("sparkle:edSignature=\"%1\" length=\"99\"").arg(signature())});
        QCOMPARE(otherLength.code, 1);
        QVERIFY(otherLength.err.contains("a file of 99 bytes, but this one has 100 bytes"));

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
        const auto itemFile = [&](const QString& version) {
            return writeFile(dir.filePath("items/" + version + ".xml"),
                             item(dir.path(), version).out.toUtf8());
        };
        const QString earlier = itemFile("1.0");
        const QStringList channel = {"--title", "Paneforge", "--link",
                                     "https://paneforge.example.org/"};
        const QString firstFeed =
            writeFile(dir.filePath("appcast.xml"),
                      run(QStringList{"feed"} + channel + QStringList{earlier}).out.toUtf8());

        const Result second = run(QStringList{"feed"} + channel +
                                  QStringList{itemFile("1.10"), firstFeed, itemFile("1.10b1")});
        QCOMPARE(second.err, QString());
        QCOMPARE(second.code, 0);
        const qsizetype newest = second.out.indexOf("<sparkle:version>1.10</");
        const qsizetype beta = second.out.indexOf("<sparkle:version>1.10b1</");
        QVERIFY(newest > 0 && newest < beta && beta < second.out.indexOf("<sparkle:version>1.0</"));

        // Errors name the files they come from.
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
        const QString plist = writeFile(dir.filePath("Info.plist"),
                                        "<plist><dict><key>CFBundleShortVersionString</key>"
                                        "<string>1.2.1</string></dict></plist>");

        const Result clean = run({"check", releases, "--info-plist", plist});
        QCOMPARE(clean.err, QString());
        QCOMPARE(clean.code, 0);
        QCOMPARE(clean.out, QString("Paneforge-1.2.1.dmg\n"));

        writeFile(releases + "/Paneforge-1.2.0.dmg", "x");
        const Result dirty = run({"check", releases, "--bundle-version", "1.2.1"});
        QCOMPARE(dirty.code, 1);
        QCOMPARE(dirty.out, QString("Paneforge-1.2.1.dmg\n"));
        QCOMPARE(dirty.err, QString("paneforge-release: Paneforge-1.2.0.dmg: version 1.2.0, but "
                                    "the bundle is version 1.2.1\n"));
        QVERIFY(run({"check", releases, "--bundle-version", "1.3"})
                    .err.endsWith(releases + ": there is no Paneforge-1.3.dmg\n"));

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
            "  1) 1111111111111111111111111111111111111111 \"Apple Development: J (AB12CD34EF)\"\n"
            "  2) 2222222222222222222222222222222222222222 \"Developer ID Application: J "
            "(TEAM123456)\"\n"
            "     2 valid identities found\n";
        const Result fromInput = run({"identity"}, listing);
        QCOMPARE(fromInput.code, 0);
        QCOMPARE(fromInput.out, QString("2222222222222222222222222222222222222222\n"));
        QCOMPARE(fromInput.err,
                 QString("paneforge-release: using “Developer ID Application: J (TEAM123456)”\n"));

        QTemporaryDir dir;
        const QString file = writeFile(
            dir.filePath("identities.txt"),
            QByteArray(listing).replace("Developer ID Application", "Apple Distribution"));
        const Result fallback = run({"identity", file});
        QCOMPARE(fallback.code, 0);
        QCOMPARE(fallback.out, QString("1111111111111111111111111111111111111111\n"));
        QVERIFY(fallback.err.startsWith("paneforge-release: warning: "));
        const Result required = run({"identity", file, "--require-developer-id"});
        QCOMPARE(required.code, 1);
        QCOMPARE(required.out, QString());

        QCOMPARE(run({"identity", "-", "--team", "TEAM123456"}, listing).code, 0);
        QCOMPARE(run({"identity", "--team", "NOPE"}, listing).code, 1);
        QCOMPARE(run({"identity", "a", "b"}).code, 2);
        QCOMPARE(run({"identity", "--require-developer-id=yes"}).code, 2);
    }
};

QTEST_GUILESS_MAIN(ReleaseCliTest)
#include "tst_release_cli.moc"
