#include "core/geometry/desktop_geometry.h"

#include <QTest>

using namespace paneforge;

class DesktopGeometryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void containsIsHalfOpen_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        QTest::newRow("bottom-left corner") << 0.0 << 0.0 << true;
        QTest::newRow("left edge") << 0.0 << 50.0 << true;
        QTest::newRow("right edge") << 100.0 << 50.0 << false;
        QTest::newRow("top edge") << 50.0 << 80.0 << false;
        QTest::newRow("just inside top-right") << 99.999 << 79.999 << true;
        QTest::newRow("below") << 50.0 << -0.001 << false;
    }
    void containsIsHalfOpen() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        QCOMPARE(DesktopRect(0, 0, 100, 80).contains({x, y}), inside);
    }

    void emptyAndNullContainNothing() {
        QVERIFY(!DesktopRect(10, 10, 0, 50).contains({10, 20}));
        QVERIFY(!DesktopRect::null().contains({0, 0}));
        QVERIFY(DesktopRect::null().isEmpty());
    }

    void negativeSizesAreStandardized() {
        const DesktopRect r(100, 100, -50, -20);
        QCOMPARE(r.minX(), 50.0);
        QCOMPARE(r.maxY(), 100.0);
        QVERIFY(r.contains({60, 90}));
        QCOMPARE(r.standardized(), DesktopRect(50, 80, 50, 20));
    }

    void unionCoversTheGapAndIgnoresNull() {
        const DesktopRect left(0, 0, 100, 50);
        const DesktopRect right(110, 20, 40, 60);
        QCOMPARE(left.united(right), DesktopRect(0, 0, 150, 80));
        QCOMPARE(DesktopRect::null().united(right), right);
        QCOMPARE(left.united(DesktopRect::null()), left);
        // A zero-sized rectangle still extends the union to its position.
        QCOMPARE(left.united(DesktopRect(200, 0, 0, 0)), DesktopRect(0, 0, 200, 50));
    }
};

QTEST_APPLESS_MAIN(DesktopGeometryTest)
#include "tst_desktop_geometry.moc"
