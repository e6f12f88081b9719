#include "core/config/config_store.h"
#include "core/diagnostics/snap_diagnostic_formatter.h"

#include <QLocale>
#include <QTest>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale.h>

using namespace paneforge;

namespace {

// printf's "%.1f" in the C locale, whatever the process's: the form the log promises.
QString cOneDecimal(double value) {
    const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t previous = uselocale(c);
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.1f", value);
    uselocale(previous);
    freelocale(c);
    return QString::fromLatin1(buffer);
}

QString decodingMessage(const QByteArray& json) {
    try {
        ConfigStore::decodeConfig(json);
    } catch (const ConfigStoreError& error) {
        return error.message();
    }
    return {};
}

} // namespace

// Every number Paneforge writes for machines (the log, the configuration, the messages quoting a
// file) reads the same under a locale whose decimal separator is a comma, as the agent runs once
// Qt has set the process locale from LANG.
class MachineNumbersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(std::setlocale(LC_ALL, "de_DE.UTF-8"),
                 "the de_DE.UTF-8 locale is missing (CTest generates it into LOCPATH)");
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        // The locale really is in force: plain printf now writes a comma.
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "%.1f", 0.5);
        QCOMPARE(QByteArray(buffer), QByteArray("0,5"));
    }

    void underACommaLocale_data() {
        QTest::addColumn<QString>("actual");
        QTest::addColumn<QString>("expected");
        namespace F = SnapDiagnosticFormatter;
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("rect") << F::formatRect({0, -25.04, 1440, 900})
                              << "(0.0,-25.0 1440.0x900.0)";
        QTest::newRow("point, ties rounded as printf does")
            << F::formatPoint({12.25, 800.96}) << "(12.2,801.0)";
        QTest::newRow("shortest forms")
            << F::formatDouble(1.5) + " " + F::formatDouble(1e-5) << "1.5 1e-05";
        // The fixed form of a huge value is hundreds of digits long; it once overran the buffer
        // and wrote the stack into the log.
        QTest::newRow("rect of -1e300")
            << F::formatRect({-1e300, 0.25, 1e300, 0})
            << "(" + cOneDecimal(-1e300) + ",0.2 " + cOneDecimal(1e300) + "x0.0)";
        QTest::newRow("not finite")
            << F::formatRect({std::nan(""), inf, -inf, 0}) << "(nan,inf -infx0.0)";
        QTest::newRow("configuration file")
            << QString::fromUtf8(ConfigStore::encodeConfig(
                                     PaneforgeConfig::makeDefault().withCellMarginPoints(12.5)))
                   .section('\n', 1, 1)
            << "  \"cellMarginPoints\" : 12.5,";
        QTest::newRow("number quoted from a file")
            << decodingMessage(R"({"displays":{},"defaultLayout":{"id":"d","name":"D",)"
                               R"("horizontalSplits":[],"verticalSplits":[]},)"
                               R"("cellMarginPoints":4,"singleSnapModifiers":{"modifiers":2.5}})")
                   .section(": ", 1)
            << "2.5 is not a whole number).";
    }
    void underACommaLocale() {
        QFETCH(QString, actual);
        QFETCH(QString, expected);
        QCOMPARE(actual, expected);
    }
};

QTEST_APPLESS_MAIN(MachineNumbersTest)
#include "tst_machine_numbers.moc"
