#include "release/info_plist.h"
#include "release/release_folder.h"
#include "release/release_version.h"

#include <QTest>

using namespace paneforge::release;

namespace {

ReleaseFolderEntry file(const QString& name, qint64 size = 1024) {
    return {name, false, size};
}

ReleaseFolderEntry folder(const QString& name) {
    return {name, true, 0};
}

using Entries = std::vector<ReleaseFolderEntry>;

} // namespace

Q_DECLARE_METATYPE(Entries)

class ReleaseFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offenders_data() {
        QTest::addColumn<Entries>("entries");
        QTest::addColumn<QString>("bundleVersion");
        // "name: reason" for the one entry that is not the publishable disk image.
        QTest::addColumn<QString>("offender");
        const auto row = [](const char* tag, const ReleaseFolderEntry& extra, const char* why) {
            QTest::newRow(tag) << Entries{file("Paneforge-1.2.1.dmg"), extra} << "1.2.1"
                               << QStringLiteral("%1: %2").arg(extra.name, why);
        };
        row("bundle left over", folder("Paneforge.app"),
            "an application bundle: publish its disk image instead");
        row("debug symbols", folder("Paneforge.app.dSYM"), "debug symbols");
        row("other folder", folder("old"), "a folder");
        row("debug build", file("Paneforge-1.2.1-debug.dmg"), "a debug build");
        row("debug in capitals", file("Paneforge-1.2.1-Debug.dmg"), "a debug build");
        row("zipped symbols", file("Paneforge-1.2.1.dSYM.zip"), "a debug build");
        row("unsigned build", file("Paneforge-1.2.1-unsigned.dmg"), "an unsigned build");
        row("Finder's file", file(".DS_Store"), "a hidden file");
        row("archive", file("Paneforge-1.2.1.zip"), "not a disk image");
        row("same version spelled otherwise", file("Paneforge-1.2.1.0.dmg"),
            "version written “1.2.1.0”, but the bundle says “1.2.1”: name it Paneforge-1.2.1.dmg");
        row("malformed version", file("Paneforge-v1.2.1.dmg"),
            "“v1.2.1” is not a version: write it without the leading “v”");
        row("hyphenated pre-release", file("Paneforge-1.2.1-rc.1.dmg"),
            "“1.2.1-rc.1” is not a version: Sparkle ignores everything from a hyphen on; write a "
            "pre-release as 1.2b1 or 1.2rc1");
        row("other name", file("paneforge-1.2.1.dmg"), "not named Paneforge-<version>.dmg");
        row("upper-case extension", file("Paneforge-1.2.1.DMG"),
            "not named Paneforge-<version>.dmg");
    }

    void offenders() {
        QFETCH(Entries, entries);
        QFETCH(QString, bundleVersion);
        QFETCH(QString, offender);
        const ReleaseFolderVerdict verdict = checkReleaseFolder(entries, bundleVersion);
        QCOMPARE(verdict.publishable, QStringList{"Paneforge-1.2.1.dmg"});
        QCOMPARE(verdict.offenders.size(), std::size_t(1));
        QCOMPARE(verdict.offenders[0].name + ": " + verdict.offenders[0].reason, offender);
        QVERIFY(!verdict.missing);
        QVERIFY(!verdict.ok());
    }

    void namesEveryOffenderInOrder() {
        const ReleaseFolderVerdict verdict =
            checkReleaseFolder({file("b-debug.dmg"), file("Paneforge-1.0.dmg", 0),
                                folder("Paneforge.app"), file(".DS_Store")},
                               "1.0");
        QVERIFY(verdict.publishable.isEmpty());
        const std::vector<ReleaseOffender> expected = {
            {".DS_Store", "a hidden file"},
            {"Paneforge-1.0.dmg", "an empty file"},
            {"Paneforge.app", "an application bundle: publish its disk image instead"},
            {"b-debug.dmg", "a debug build"},
        };
        QCOMPARE(verdict.offenders, expected);
        QCOMPARE(verdict.missing, std::optional<QString>("there is no Paneforge-1.0.dmg"));
    }

    void malformedBundleVersion() {
        QVERIFY_THROWS_EXCEPTION(ReleaseVersionError,
                                 checkReleaseFolder({file("Paneforge-1.0.dmg")}, "1.0-beta"));
    }

    void readsInfoPlist() {
        const QByteArray plist =
            "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict><!-- a comment -->"
            "<key>CFBundleShortVersionString</key><string> 1.2.1 </string>"
            "<key>LSUIElement</key><true/><key>Count</key><integer>3</integer>"
            "<key>List</key><array><string>a</string><false/></array>"
            "<key>Nested</key><dict><key>Inner</key><real>1.5</real></dict></dict></plist>";
        const QVariantMap values = readInfoPlist(plist);
        QCOMPARE(values.value("LSUIElement"), QVariant(true));
        QCOMPARE(values.value("Count"), QVariant(qlonglong(3)));
        QCOMPARE(values.value("List"), QVariant(QVariantList{"a", false}));
        QCOMPARE(values.value("Nested").toMap().value("Inner"), QVariant(1.5));
        QCOMPARE(infoPlistString(plist, "CFBundleShortVersionString"), QString("1.2.1"));
    }

    void infoPlistProblems_data() {
        QTest::addColumn<QByteArray>("plist");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("problem");
        const auto row = [](const char* tag, const QByteArray& plist, const char* key,
                            const char* problem) {
            QTest::newRow(tag) << plist << QString(key) << QString(problem);
        };
        const QByteArray one = "<plist><dict><key>A</key><true/></dict></plist>";
        row("no such key", one, "B", "it has no B");
        row("not a string", one, "A", "A is not a string");
        row("binary", "bplist00\x01", "X", "plutil -convert xml1");
        row("other XML", "<html/>", "X", "not a property list");
        row("key without value", "<plist><dict><key>A</key>", "A", "has no value");
        row("broken XML", "<plist><dict><key>A</key><string>x</dict></plist>", "A",
            "not valid XML");
        row("unknown type", "<plist><dict><key>A</key><date>x</date></dict></plist>", "A",
            "unknown value type <date>");
    }
    void infoPlistProblems() {
        QFETCH(QByteArray, plist);
        QFETCH(QString, key);
        QFETCH(QString, problem);
        try {
            infoPlistString(plist, key);
            QFAIL("the property list was accepted");
        } catch (const InfoPlistError& error) {
            QVERIFY2(error.message().contains(problem), qPrintable(error.message()));
        }
    }
};

QTEST_GUILESS_MAIN(ReleaseFolderTest)
#include "tst_release_folder.moc"
