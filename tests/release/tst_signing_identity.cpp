#include "release/signing_identity.h"

#include <QTest>

using namespace paneforge::release;

namespace {

// Sample listings in the form `security find-identity` prints them.
const QString kDevelopment = QStringLiteral("1111111111111111111111111111111111111111");
const QString kDeveloperId = QStringLiteral("2222222222222222222222222222222222222222");
const QString kOtherTeam = QStringLiteral("3333333333333333333333333333333333333333");

const QString kBothValid = QString::fromLatin1(
    R"L(  1) 1111111111111111111111111111111111111111 "Apple Development: Jane Doe (AB12CD34EF)"
  2) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
     2 valid identities found
)L");

const QString kDevelopmentOnly = QString::fromLatin1(
    R"L(  1) 1111111111111111111111111111111111111111 "Apple Development: Jane Doe (AB12CD34EF)"
     1 valid identities found
)L");

const QString kNone = QStringLiteral("     0 valid identities found\n");

// Without -v: every matching identity with the reason some are not valid, then the valid ones.
const QString kFullListing = QString::fromLatin1(R"L(
Policy: Code Signing
  Matching identities
  1) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)" (CSSMERR_TP_CERT_REVOKED)
  2) 1111111111111111111111111111111111111111 "Apple Development: Jane Doe (AB12CD34EF)"
     2 identities found

  Valid identities only
  1) 1111111111111111111111111111111111111111 "Apple Development: Jane Doe (AB12CD34EF)"
     1 valid identities found
)L");

const QString kTwoTeams = QString::fromLatin1(
    R"L(  1) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
  2) 3333333333333333333333333333333333333333 "Developer ID Application: Example Ltd (OTHER98765)"
     2 valid identities found
)L");

// The same certificate in two keychains is listed twice.
const QString kTwice = QString::fromLatin1(
    R"L(  1) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
  2) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
     2 valid identities found
)L");

const QString kTruncated = QString::fromLatin1(
    R"L(  1) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
     2 valid identities found
)L");

const QString kNoCountLine = QString::fromLatin1(
    R"L(  1) 2222222222222222222222222222222222222222 "Developer ID Application: Jane Doe (TEAM123456)"
)L");

struct Outcome {
    QString hash;
    QString warning;
    QString error;
};

Outcome choose(const QString& listing, const SigningIdentityRequest& request = {}) {
    try {
        const SigningIdentityChoice choice =
            chooseSigningIdentity(parseSigningIdentities(listing), request);
        return {choice.identity.hash, choice.warning, {}};
    } catch (const SigningIdentityError& error) {
        return {{}, {}, error.message()};
    }
}

} // namespace

class SigningIdentityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsEachLine() {
        const auto identities = parseSigningIdentities(kBothValid);
        QCOMPARE(identities.size(), std::size_t(2));
        QCOMPARE(identities[0].hash, kDevelopment);
        QCOMPARE(identities[0].name, QString("Apple Development: Jane Doe (AB12CD34EF)"));
        QCOMPARE(identities[0].teamId(), QString("AB12CD34EF"));
        QVERIFY(!identities[0].isDeveloperIdApplication());
        QVERIFY(identities[0].isValid());
        QCOMPARE(identities[1].hash, kDeveloperId);
        QCOMPARE(identities[1].teamId(), QString("TEAM123456"));
        QVERIFY(identities[1].isDeveloperIdApplication());
    }

    void acceptsWindowsLineEndingsAndLowerCaseHashes() {
        QString listing = kDevelopmentOnly;
        listing.replace("\n", "\r\n").replace(kDevelopment, QString(40, QChar('a')));
        const auto identities = parseSigningIdentities(listing);
        QCOMPARE(identities.size(), std::size_t(1));
        QCOMPARE(identities[0].hash, QString(40, QChar('A')));
    }

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
        row("developer id preferred", kBothValid, "", false, kDeveloperId, "", "");
        row("developer id required and there", kBothValid, "", true, kDeveloperId, "", "");
        row("development identity for a local build", kDevelopmentOnly, "", false, kDevelopment,
            "is not a Developer ID Application identity", "");
        row("development identity refused for a release", kDevelopmentOnly, "", true, "", "",
            "no Developer ID Application identity, which notarization needs; there are: "
            "“Apple Development: Jane Doe (AB12CD34EF)”");
        row("revoked developer id skipped", kFullListing, "", false, kDevelopment,
            "not a Developer ID", "");
        row("no identity", kNone, "", false, "", "", "no valid code-signing identity");
        row("two teams", kTwoTeams, "", false, "", "", "choose the team with --team TEAMID");
        row("two teams, one chosen", kTwoTeams, "OTHER98765", false, kOtherTeam, "", "");
        row("team without identity", kTwoTeams, "NOSUCHTEAM", false, "", "",
            "no valid identity of team NOSUCHTEAM; there are: “Developer ID Application: "
            "Jane Doe (TEAM123456)”");
        row("listed twice", kTwice, "", true, kDeveloperId, "", "");
        row("truncated", kTruncated, "", false, "", "",
            "the listing says 2 valid identities but shows 1");
        row("no count line", kNoCountLine, "", false, "", "",
            "ends without its “N valid identities found” line");
        row("not a listing", "security: command not found\n", "", false, "", "",
            "this is not the output of “security");
        row("empty", "", "", false, "", "", "this is not the output");
        row("matching section only",
            "  1) 2222222222222222222222222222222222222222 \"Developer ID Application: J (T)\"\n"
            "     1 identities found\n",
            "", false, "", "", "the listing has no valid identities");
    }

    void choice() {
        QFETCH(QString, listing);
        QFETCH(QString, team);
        QFETCH(bool, requireDeveloperId);
        QFETCH(QString, hash);
        QFETCH(QString, warning);
        QFETCH(QString, error);
        const Outcome outcome = choose(listing, {team, requireDeveloperId});
        QCOMPARE(outcome.hash, hash);
        QVERIFY2(error.isEmpty() ? outcome.error.isEmpty() : outcome.error.contains(error),
                 qPrintable(outcome.error));
        QVERIFY2(warning.isEmpty() ? outcome.warning.isEmpty() : outcome.warning.contains(warning),
                 qPrintable(outcome.warning));
    }
};

QTEST_GUILESS_MAIN(SigningIdentityTest)
#include "tst_signing_identity.moc"
