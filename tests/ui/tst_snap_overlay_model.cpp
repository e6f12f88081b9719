#include "ui/snap_overlay_model.h"

#include <QTest>

using namespace paneforge;

class TestSnapOverlayModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void desktopToView_data();
    void desktopToView();
    void maskCoversOutlinesAndChosenZonesOnly();
    void colors();
};

void TestSnapOverlayModel::desktopToView_data() {
    QTest::addColumn<DesktopRect>("desktop");
    QTest::addColumn<QRectF>("primary");
    QTest::addColumn<QPointF>("windowOrigin");
    QTest::addColumn<QRectF>("expected");
    QTest::newRow("primary, window at origin")
        << DesktopRect(0, 0, 100, 50) << QRectF(0, 0, 1000, 800) << QPointF(0, 0)
        << QRectF(0, 750, 100, 50);
    QTest::newRow("top of primary") << DesktopRect(10, 700, 100, 100) << QRectF(0, 0, 1000, 800)
                                    << QPointF(0, 0) << QRectF(10, 0, 100, 100);
    QTest::newRow("window offset") << DesktopRect(10, 700, 100, 100) << QRectF(0, 0, 1000, 800)
                                   << QPointF(5, 20) << QRectF(5, -20, 100, 100);
    QTest::newRow("display above primary")
        << DesktopRect(0, 800, 200, 100) << QRectF(0, 0, 1000, 800) << QPointF(0, -100)
        << QRectF(0, 0, 200, 100);
    QTest::newRow("primary top edge not zero")
        << DesktopRect(0, 0, 100, 50) << QRectF(0, 300, 1000, 800) << QPointF(0, 0)
        << QRectF(0, 1050, 100, 50);
}

void TestSnapOverlayModel::desktopToView() {
    QFETCH(DesktopRect, desktop);
    QFETCH(QRectF, primary);
    QFETCH(QPointF, windowOrigin);
    QFETCH(QRectF, expected);
    QCOMPARE(paneforge::desktopToView(desktop, primary, windowOrigin), expected);
}

void TestSnapOverlayModel::maskCoversOutlinesAndChosenZonesOnly() {
    const SnapOverlayModel model({QRectF(0, 0, 10, 10), QRectF(10, 0, 10, 10)},
                                 {QRectF(10, 0, 10, 10)});
    const QRegion mask = model.mask();
    QVERIFY(mask.contains(QPoint(0, 0)));
    QVERIFY(mask.contains(QPoint(9, 5)));
    QVERIFY(mask.contains(QPoint(5, 9)));
    QVERIFY(!mask.contains(QPoint(5, 5))); // inside an unchosen zone
    QVERIFY(mask.contains(QPoint(15, 5))); // inside the chosen zone
    QVERIFY(!mask.contains(QPoint(25, 5)));
    QVERIFY(SnapOverlayModel({QRectF(0, 0, 10, 10)}, {}).mask().contains(QPoint(0, 5)));
    QVERIFY(!SnapOverlayModel({QRectF(0, 0, 10, 10)}, {}).mask().contains(QPoint(4, 5)));
}

void TestSnapOverlayModel::colors() {
    QCOMPARE(SnapOverlayModel::outlineColor().rgb(), QColor(Qt::white).rgb());
    QCOMPARE(qRound(SnapOverlayModel::outlineColor().alphaF() * 100), 22);
    const QColor fill = SnapOverlayModel::fillColor(QColor(10, 20, 30));
    QCOMPARE(fill.rgb(), QColor(10, 20, 30).rgb());
    QCOMPARE(qRound(fill.alphaF() * 100), 50);
}

QTEST_GUILESS_MAIN(TestSnapOverlayModel)
#include "tst_snap_overlay_model.moc"
