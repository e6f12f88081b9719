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
        const auto row = [](const char* tag, const char* a, const char* b, const char* order) {
            QTest::newRow(tag) << QString(a) << QString(b) << QString(order);
        };
        // Numbers compare as numbers, part by part; missing trailing numbers count as zero, as in
        // Sparkle; pre-releases come before their release.
        row("patch after minor", "1.2", "1.2.1", "<");
        row("1.10 after 1.2.1", "1.2.1", "1.10", "<");
        row("major wins", "2", "1.99.99", ">");
        row("long numbers", "1.123456789012345678", "1.123456789012345677", ">");
        row("equal", "1.2.1", "1.2.1", "=");
        row("trailing zero", "1.2", "1.2.0", "=");
        row("beta before release", "1.2b1", "1.2", "<");
        row("rc before release", "1.2rc1", "1.2", "<");
        row("rc before padded release", "1.2rc1", "1.2.0", "<");
        row("pre-release after previous", "1.2b1", "1.1.9", ">");
        row("alpha before beta", "1.2a1", "1.2b1", "<");
        row("b before beta", "1.2b", "1.2beta", "<");
        row("no number before zero", "1.2b", "1.2b0", "<");
        row("beta numbers", "1.2b2", "1.2b10", "<");
        row("equal pre-releases", "1.2b1", "1.2.0b1", "=");
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

    void malformed_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");
        const auto row = [](const char* tag, const char* text, const char* problem) {
            QTest::newRow(tag) << QString(text) << QString(problem);
        };
        row("empty", "", "it is empty");
        row("trailing dot", "1.", "it ends with a dot");
        row("leading dot", ".1", "it must start with a number");
        row("two dots", "1..2", "two dots in a row");
        row("dot before letters", "1.2.b1", "a number must follow the dot");
        row("leading v", "v1.2", "without the leading “v”");
        row("leading V", "V1.2", "without the leading “V”");
        row("hyphen after label", "1.2b1-2", "hyphen");
        row("build metadata", "1.2+5", "build metadata (“+5”)");
        row("comma", "1,2", "unexpected “,2” after “1”");
        row("leading zero", "1.02", "the number “02” has a leading zero");
        row("leading zero in label", "1.2b01", "“01” has a leading zero");
        row("too long", "1.1234567890123456789", "is too long");
        row("space inside", "1. 2", "white space");
        row("upper-case label", "1.2RC1", "must be in lower case (“rc”)");
        row("letters after number", "1.2b1c", "nothing may follow the pre-release");
        row("not ascii", "1.2é", "unexpected “é”");
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
