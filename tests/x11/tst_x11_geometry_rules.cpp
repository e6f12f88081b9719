#include "platform/x11/edid.h"
#include "platform/x11/x11_display_services.h"

#include <QTest>
#include <QtEndian>

using namespace paneforge;

using Struts = std::vector<std::vector<std::uint32_t>>;

namespace {
// Manufacturer "DEL" packs to 0x10AC (big-endian), product 0x4134 and the serial little-endian.
QByteArray edidBlock(std::uint32_t serial, const QByteArray& name) {
    QByteArray block = QByteArray::fromHex("00ffffffffffff0010ac3441").leftJustified(128, '\0');
    qToLittleEndian(serial, block.data() + 12);
    block[72 + 3] = char(0xFC); // second descriptor: monitor name
    return block.replace(72 + 5, name.size(), name);
}
} // namespace

class X11GeometryRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The identity fields are read from a real output in tst_x11_two_monitors.
    void edid() {
        QCOMPARE(parseEdid(edidBlock(1, "DELL U2720Q\n  "))->productName, QString("DELL U2720Q"));
        QCOMPARE(parseEdid(edidBlock(0, "X\n"))->serialNumber, std::nullopt);
        QVERIFY(!parseEdid(edidBlock(1, "X").left(127)));
    }

    void struts_data() {
        QTest::addColumn<QRect>("monitor");
        QTest::addColumn<Struts>("struts");
        QTest::addColumn<QRect>("visible");
        const QRect left(0, 0, 960, 1080);
        const QRect right(960, 0, 960, 1080);
        QTest::newRow("bottom dock across both")
            << right << Struts{{0, 0, 0, 48, 0, 0, 0, 0, 0, 0, 0, 1919}}
            << QRect(960, 0, 960, 1032);
        QTest::newRow("right dock reaches only the right monitor")
            << left << Struts{{0, 64, 0, 0, 0, 0, 0, 1079, 0, 0, 0, 0}} << left;
        QTest::newRow("malformed strut ignored") << left << Struts{{30, 30}} << left;
    }
    void struts() {
        QFETCH(QRect, monitor);
        QFETCH(Struts, struts);
        QFETCH(QRect, visible);
        QCOMPARE(X11DisplayServices::visibleArea(monitor, struts, 1920, 1080), visible);
    }
};

QTEST_APPLESS_MAIN(X11GeometryRulesTest)
#include "tst_x11_geometry_rules.moc"
