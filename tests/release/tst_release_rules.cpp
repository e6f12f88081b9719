// The release library's rules: version order and malformed versions, the signing identity chosen
// from `security find-identity`, and what a release folder and an Info.plist must hold.

#include "release/info_plist.h"
#include "release/release_folder.h"
#include "release/release_version.h"
#include "release/signing_identity.h"

#include <QTest>

using namespace paneforge::release;

namespace {

QString relation(const ReleaseVersion& a, const ReleaseVersion& b) {
    const auto order = a <=> b;
    return order < 0 ? QStringLiteral("<") : order > 0 ? QStringLiteral(">") : QStringLiteral("=");
}

ReleaseFolderEntry file(const QString& name, qint64 size = 1024, bool isFolder = false) {
    return {name, isFolder, size};
}

using Entries = std::vector<ReleaseFolderEntry>;

// Listings in the form `security find-identity` prints them, put together from their lines.
const QString kDevelopment = QStringLiteral("1111111111111111111111111111111111111111");
const QString kDeveloperId = QStringLiteral("2222222222222222222222222222222222222222");
const QString kOtherTeam = QStringLiteral("3333333333333333333333333333333333333333");
const QString kDevelopmentLine =
    "  1) " + kDevelopment + " \"Apple Development: Jane Doe (AB12CD34EF)\"\n";
const QString kDeveloperIdLine =
    "  2) " + kDeveloperId + " \"Developer ID Application: Jane Doe (TEAM123456)\"\n";
const QString kOtherTeamLine =
    "  3) " + kOtherTeam + " \"Developer ID Application: Example Ltd (OTHER98765)\"\n";

QString found(int count) {
    return QStringLiteral("     %1 valid identities found\n").arg(count);
}

// Without -v: every matching identity with the reason some are not valid, then the valid ones.
const QString kFullListing =
    "Policy: Code Signing\n  Matching identities\n" +
    QString(kDeveloperIdLine).replace("\n", " (CSSMERR_TP_CERT_REVOKED)\n") + kDevelopmentLine +
    "     2 identities found\n\n  Valid identities only\n" + kDevelopmentLine + found(1);

} // namespace

Q_DECLARE_METATYPE(Entries)

class ReleaseRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void versionOrder_data() {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* tag, const char* a, const char* b, const char* order) {
            QTest::newRow(tag) << QString(a) << QString(b) << QString(order);
        };
        // Numbers compare as numbers, part by part; missing trailing numbers count as zero, as in
        // Sparkle; pre-releases come before their release.
        row("1.10 after 1.2.1", "1.2.1", "1.10", "<");
        row("long numbers", "1.123456789012345678", "1.123456789012345677", ">");
        row("trailing zero", "1.2", "1.2.0", "=");
        row("beta before release", "1.2b1", "1.2", "<");
        row("rc before padded release", "1.2rc1", "1.2.0", "<");
        row("alpha before beta", "1.2a1", "1.2b1", "<");
        row("b before beta", "1.2b", "1.2beta", "<");
        row("no number before zero", "1.2b", "1.2b0", "<");
        row("beta numbers", "1.2b2", "1.2b10", "<");
        row("equal pre-releases", "1.2b1", "1.2.0b1", "=");
    }

    void versionOrder() {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(QString, expected);
        const ReleaseVersion left = ReleaseVersion::parse(a);
        const ReleaseVersion right = ReleaseVersion::parse(b);
        QCOMPARE(relation(left, right), expected);
        const QString mirrored = expected == "<" ? ">" : expected == ">" ? "<" : "=";
        QCOMPARE(relation(right, left), mirrored);
        QCOMPARE(left == right, expected == "=");
    }

    void malformedVersions_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");
        const auto row = [](const char* tag, const char* text, const char* problem) {
            QTest::newRow(tag) << QString(text) << QString(problem);
        };
        row("empty", "", "it is empty");
        row("trailing dot", "1.", "it ends with a dot");
        row("leading dot", ".1", "it must start with a number");
        row("two dots", "1..2", "two dots in a row");
        row("leading v", "v1.2", "without the leading “v”");
        row("hyphen after label", "1.2b1-2", "hyphen");
        row("build metadata", "1.2+5", "build metadata (“+5”)");
        row("leading zero", "1.02", "the number “02” has a leading zero");
        row("too long", "1.1234567890123456789", "is too long");
        row("upper-case label", "1.2RC1", "must be in lower case (“rc”)");
    }

    void malformedVersions() {
        QFETCH(QString, text);
        QFETCH(QString, problem);
        const QString reported = ReleaseVersion::problemWith(text).value_or(QString());
        QVERIFY2(reported.startsWith(QStringLiteral("“%1” is not a version: ").arg(text)) &&
                     reported.contains(problem),
                 qPrintable(reported));
        QVERIFY_THROWS_EXCEPTION(ReleaseVersionError, ReleaseVersion::parse(text));
    }

    void releaseFolderOffenders_data() {
        QTest::addColumn<Entries>("entries");
        // "name: reason" for the one entry that is not the publishable disk image.
        QTest::addColumn<QString>("offender");
        const auto row = [](const char* tag, const ReleaseFolderEntry& extra, const char* why) {
            QTest::newRow(tag) << Entries{file("Paneforge-1.2.1.dmg"), extra}
                               << QStringLiteral("%1: %2").arg(extra.name, why);
        };
        row("bundle left over", file("Paneforge.app", 0, true),
            "an application bundle: publish its disk image instead");
        row("debug symbols", file("Paneforge.app.dSYM", 0, true), "debug symbols");
        row("debug build", file("Paneforge-1.2.1-debug.dmg"), "a debug build");
        row("unsigned build", file("Paneforge-1.2.1-unsigned.dmg"), "an unsigned build");
        row("Finder's file", file(".DS_Store"), "a hidden file");
        row("archive", file("Paneforge-1.2.1.zip"), "not a disk image");
        row("same version spelled otherwise", file("Paneforge-1.2.1.0.dmg"),
            "version written “1.2.1.0”, but the bundle says “1.2.1”: name it Paneforge-1.2.1.dmg");
        row("malformed version", file("Paneforge-v1.2.1.dmg"),
            "“v1.2.1” is not a version: write it without the leading “v”");
        row("other name", file("paneforge-1.2.1.dmg"), "not named Paneforge-<version>.dmg");
    }

    void releaseFolderOffenders() {
        QFETCH(Entries, entries);
        QFETCH(QString, offender);
        const ReleaseFolderVerdict verdict = checkReleaseFolder(entries, "1.2.1");
        QCOMPARE(verdict.publishable, QStringList{"Paneforge-1.2.1.dmg"});
        QCOMPARE(verdict.offenders.size(), std::size_t(1));
        QCOMPARE(verdict.offenders[0].name + ": " + verdict.offenders[0].reason, offender);
        QVERIFY(!verdict.ok());
    }

    void namesEveryOffenderInOrder() {
        const ReleaseFolderVerdict verdict =
            checkReleaseFolder({file("b-debug.dmg"), file("Paneforge-1.0.dmg", 0),
                                file("Paneforge.app", 0, true), file(".DS_Store")},
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

    void readsInfoPlist() {
        const QByteArray plist =
            "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict><!-- a comment -->"
            "<key>CFBundleShortVersionString</key><string> 1.2.1 </string>"
            "<key>Count</key><integer>3</integer>"
            "<key>Nested</key><dict><key>Inner</key><real>1.5</real></dict></dict></plist>";
        QCOMPARE(readInfoPlist(plist).value("Nested"), QVariant(QVariantMap{{"Inner", 1.5}}));
        QCOMPARE(readInfoPlist(plist).value("Count"), QVariant(qlonglong(3)));
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
        row("broken XML", "<plist><dict><key>A</key><string>x</dict></plist>", "A",
            "not valid XML");
    }
    void infoPlistProblems() {
        QFETCH(QByteArray, plist);
        QFETCH(QString, key);
        QFETCH(QString, problem);
        QString message;
        try {
            infoPlistString(plist, key);
        } catch (const InfoPlistError& error) {
            message = error.message();
        }
        QVERIFY2(message.contains(problem), qPrintable(message));
    }

    // A Developer ID required for a release: tst_release_cli.
    void signingIdentity_data() {
        QTest::addColumn<QString>("listing");
        QTest::addColumn<QString>("team");
        QTest::addColumn<QString>("hash");
        QTest::addColumn<QString>("message"); // the warning with a hash, the error without
        const auto row = [](const char* tag, const QString& listing, const char* team,
                            const QString& hash, const char* message) {
            QTest::newRow(tag) << listing << QString(team) << hash << QString(message);
        };
        const QString twoTeams = kDeveloperIdLine + kOtherTeamLine + found(2);
        row("windows line endings, lower-case hash",
            QString(kDevelopmentLine + found(1))
                .replace("\n", "\r\n")
                .replace(kDevelopment, QString(40, QChar('a'))),
            "", QString(40, QChar('A')), "not a Developer ID");
        row("revoked developer id skipped", kFullListing, "", kDevelopment, "not a Developer ID");
        row("two teams", twoTeams, "", "", "choose the team with --team TEAMID");
        row("two teams, one chosen", twoTeams, "OTHER98765", kOtherTeam, "");
        row("team without identity", twoTeams, "NOSUCHTEAM", "",
            "no valid identity of team NOSUCHTEAM; there are: “Developer ID Application: "
            "Jane Doe (TEAM123456)”");
        row("listed twice", kDeveloperIdLine + kDeveloperIdLine + found(2), "", kDeveloperId, "");
        row("truncated", kDeveloperIdLine + found(2), "", "",
            "the listing says 2 valid identities but shows 1");
        row("no count line", kDeveloperIdLine, "", "",
            "ends without its “N valid identities found” line");
        row("not a listing", "security: command not found\n", "", "",
            "this is not the output of “security");
    }
    void signingIdentity() {
        QFETCH(QString, listing);
        QFETCH(QString, team);
        QFETCH(QString, message);
        SigningIdentityChoice choice;
        try {
            choice = chooseSigningIdentity(parseSigningIdentities(listing), {team, false});
        } catch (const SigningIdentityError& error) {
            choice.warning = error.message();
        }
        QTEST(choice.identity.hash, "hash");
        QVERIFY2(message.isEmpty() ? choice.warning.isEmpty() : choice.warning.contains(message),
                 qPrintable(choice.warning));
    }
};

QTEST_GUILESS_MAIN(ReleaseRulesTest)
#include "tst_release_rules.moc"
