#include "release/release_version.h"

#include <QTest>
#include <algorithm>

using namespace paneforge::release;

namespace {

QString relation(const ReleaseVersion& a, const ReleaseVersion& b) {
    const auto order = a <=> b;
    return order < 0 ? QStringLiteral("<") : order > 0 ? QStringLiteral(">") : QStringLiteral("=");
}

} // namespace

class ReleaseVersionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ordering_data() {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<QString>("expected");
        // Numbers compare as numbers, part by part.
        QTest::newRow("patch after minor") << "1.2"
                                           << "1.2.1"
                                           << "<";
        QTest::newRow("1.10 after 1.2.1") << "1.2.1"
                                          << "1.10"
                                          << "<";
        QTest::newRow("1.10 after 1.9") << "1.9"
                                        << "1.10"
                                        << "<";
        QTest::newRow("major wins") << "2"
                                    << "1.99.99"
                                    << ">";
        QTest::newRow("10.0 after 9.9") << "10.0"
                                        << "9.9"
                                        << ">";
        QTest::newRow("zero versions") << "0.1.0"
                                       << "0.1.1"
                                       << "<";
        QTest::newRow("long numbers") << "1.123456789012345678"
                                      << "1.123456789012345677"
                                      << ">";
        // Missing trailing numbers count as zero, as in Sparkle.
        QTest::newRow("equal") << "1.2.1"
                               << "1.2.1"
                               << "=";
        QTest::newRow("trailing zero") << "1.2"
                                       << "1.2.0"
                                       << "=";
        QTest::newRow("trailing zeros") << "1"
                                        << "1.0.0"
                                        << "=";
        // Pre-releases come before their release.
        QTest::newRow("beta before release") << "1.2b1"
                                             << "1.2"
                                             << "<";
        QTest::newRow("rc before release") << "1.2rc1"
                                           << "1.2"
                                           << "<";
        QTest::newRow("rc before padded release") << "1.2rc1"
                                                  << "1.2.0"
                                                  << "<";
        QTest::newRow("pre-release after previous") << "1.2b1"
                                                    << "1.1.9"
                                                    << ">";
        QTest::newRow("pre-release before next patch") << "1.2b1"
                                                       << "1.2.1"
                                                       << "<";
        QTest::newRow("alpha before beta") << "1.2a1"
                                           << "1.2b1"
                                           << "<";
        QTest::newRow("beta before rc") << "1.2b3"
                                        << "1.2rc1"
                                        << "<";
        QTest::newRow("b before beta") << "1.2b"
                                       << "1.2beta"
                                       << "<";
        QTest::newRow("no number first") << "1.2b"
                                         << "1.2b1"
                                         << "<";
        QTest::newRow("no number before zero") << "1.2b"
                                               << "1.2b0"
                                               << "<";
        QTest::newRow("beta numbers") << "1.2b2"
                                      << "1.2b10"
                                      << "<";
        QTest::newRow("equal pre-releases") << "1.2b1"
                                            << "1.2.0b1"
                                            << "=";
    }

    void ordering() {
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

    void sortsAHistory() {
        const QStringList expected = {"1.0",  "1.1b1", "1.1",   "1.2",    "1.2.1",
                                      "1.10", "2.0a1", "2.0b1", "2.0rc1", "2.0"};
        std::vector<ReleaseVersion> versions;
        for (const char* text :
             {"2.0", "1.10", "1.2", "2.0rc1", "1.1", "1.0", "2.0a1", "1.2.1", "1.1b1", "2.0b1"}) {
            versions.push_back(ReleaseVersion::parse(text));
        }
        std::sort(versions.begin(), versions.end());
        QStringList sorted;
        for (const ReleaseVersion& version : versions) {
            sorted << version.text();
        }
        QCOMPARE(sorted, expected);
    }

    void parts() {
        const ReleaseVersion release = ReleaseVersion::parse("1.10.3");
        QCOMPARE(release.text(), QString("1.10.3"));
        QCOMPARE(release.numbers(), (std::vector<std::uint64_t>{1, 10, 3}));
        QVERIFY(!release.isPreRelease());

        const ReleaseVersion candidate = ReleaseVersion::parse("2.0rc3");
        QCOMPARE(candidate.numbers(), (std::vector<std::uint64_t>{2, 0}));
        QVERIFY(candidate.isPreRelease());
        QCOMPARE(candidate.preReleaseLabel(), QString("rc"));
        QCOMPARE(candidate.preReleaseNumber(), std::optional<std::uint64_t>(3));

        QCOMPARE(ReleaseVersion::parse("2.0beta").preReleaseNumber(), std::nullopt);
        QCOMPARE(ReleaseVersion().text(), QString("0"));
        QVERIFY(!ReleaseVersion::problemWith("1.2.1"));
    }

    void malformed_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");
        QTest::newRow("empty") << ""
                               << "it is empty";
        QTest::newRow("trailing dot") << "1."
                                      << "it ends with a dot";
        QTest::newRow("leading dot") << ".1"
                                     << "it must start with a number";
        QTest::newRow("two dots") << "1..2"
                                  << "two dots in a row";
        QTest::newRow("dot before letters") << "1.2.b1"
                                            << "a number must follow the dot";
        QTest::newRow("letters only") << "abc"
                                      << "it must start with a number";
        QTest::newRow("leading v") << "v1.2"
                                   << "without the leading “v”";
        QTest::newRow("leading V") << "V1.2"
                                   << "without the leading “V”";
        QTest::newRow("hyphen") << "1.2-beta.1"
                                << "Sparkle ignores everything from a hyphen on";
        QTest::newRow("hyphen after label") << "1.2b1-2"
                                            << "hyphen";
        QTest::newRow("build metadata") << "1.2+5"
                                        << "build metadata (“+5”)";
        QTest::newRow("comma") << "1,2"
                               << "unexpected “,2” after “1”";
        QTest::newRow("underscore") << "1.2_3"
                                    << "unexpected “_3” after “1.2”";
        QTest::newRow("leading zero") << "1.02"
                                      << "the number “02” has a leading zero";
        QTest::newRow("leading zero in label") << "1.2b01"
                                               << "“01” has a leading zero";
        QTest::newRow("too long") << "1.1234567890123456789"
                                  << "is too long";
        QTest::newRow("space inside") << "1. 2"
                                      << "white space";
        QTest::newRow("space after") << "1.2 "
                                     << "white space";
        QTest::newRow("upper-case label") << "1.2RC1"
                                          << "must be in lower case (“rc”)";
        QTest::newRow("after pre-release number") << "1.2b1.1"
                                                  << "nothing may follow";
        QTest::newRow("letters after number") << "1.2b1c"
                                              << "nothing may follow the pre-release";
        QTest::newRow("not ascii") << "1.2é"
                                   << "unexpected “é”";
    }

    void malformed() {
        QFETCH(QString, text);
        QFETCH(QString, problem);
        const auto reported = ReleaseVersion::problemWith(text);
        QVERIFY(reported.has_value());
        QVERIFY2(reported->startsWith(QStringLiteral("“%1” is not a version: ").arg(text)),
                 qPrintable(*reported));
        QVERIFY2(reported->contains(problem), qPrintable(*reported));
        try {
            ReleaseVersion::parse(text);
            QFAIL("parse accepted a malformed version");
        } catch (const ReleaseVersionError& error) {
            QCOMPARE(error.message(), *reported);
            QCOMPARE(QString::fromStdString(error.what()), *reported);
        }
    }
};

QTEST_GUILESS_MAIN(ReleaseVersionTest)
#include "tst_release_version.moc"
