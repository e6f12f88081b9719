#include "release/signing_identity.h"

#include <QTest>

using namespace paneforge::release;

namespace {

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

class SigningIdentityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choice_data() {
        QTest::addColumn<QString>("listing");
        QTest::addColumn<QString>("team");
        QTest::addColumn<bool>("requireDeveloperId");
        QTest::addColumn<QString>("hash");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* tag, const QString& listing, const char* team, bool require,
                            const QString& hash, const char* warning, const char* error) {
            QTest::newRow(tag) << listing << QString(team) << require << hash << QString(warning)
                               << QString(error);
        };
        const QString twoTeams = kDeveloperIdLine + kOtherTeamLine + found(2);
        row("development identity refused for a release", kDevelopmentLine + found(1), "", true, "",
            "",
            "no Developer ID Application identity, which notarization needs; there are: "
            "“Apple Development: Jane Doe (AB12CD34EF)”");
        row("windows line endings, lower-case hash",
            QString(kDevelopmentLine + found(1))
                .replace("\n", "\r\n")
                .replace(kDevelopment, QString(40, QChar('a'))),
            "", false, QString(40, QChar('A')), "not a Developer ID", "");
        row("revoked developer id skipped", kFullListing, "", false, kDevelopment,
            "not a Developer ID", "");
        row("no identity", found(0), "", false, "", "", "no valid code-signing identity");
        row("two teams", twoTeams, "", false, "", "", "choose the team with --team TEAMID");
        row("two teams, one chosen", twoTeams, "OTHER98765", false, kOtherTeam, "", "");
        row("team without identity", twoTeams, "NOSUCHTEAM", false, "", "",
            "no valid identity of team NOSUCHTEAM; there are: “Developer ID Application: "
            "Jane Doe (TEAM123456)”");
        row("listed twice", kDeveloperIdLine + kDeveloperIdLine + found(2), "", true, kDeveloperId,
            "", "");
        row("truncated", kDeveloperIdLine + found(2), "", false, "", "",
            "the listing says 2 valid identities but shows 1");
        row("no count line", kDeveloperIdLine, "", false, "", "",
            "ends without its “N valid identities found” line");
        row("not a listing", "security: command not found\n", "", false, "", "",
            "this is not the output of “security");
        row("matching section only", kDeveloperIdLine + "     1 identities found\n", "", false, "",
            "", "the listing has no valid identities");
    }

    void choice() {
        QFETCH(QString, listing);
        QFETCH(QString, team);
        QFETCH(bool, requireDeveloperId);
        QFETCH(QString, hash);
        QFETCH(QString, warning);
        QFETCH(QString, error);
        SigningIdentityChoice choice;
        QString message;
        try {
            choice =
                chooseSigningIdentity(parseSigningIdentities(listing), {team, requireDeveloperId});
        } catch (const SigningIdentityError& thrown) {
            message = thrown.message();
        }
        QCOMPARE(choice.identity.hash, hash);
        QVERIFY2(error.isEmpty() ? message.isEmpty() : message.contains(error),
                 qPrintable(message));
        QVERIFY2(warning.isEmpty() ? choice.warning.isEmpty() : choice.warning.contains(warning),
                 qPrintable(choice.warning));
    }
};

QTEST_GUILESS_MAIN(SigningIdentityTest)
#include "tst_signing_identity.moc"
