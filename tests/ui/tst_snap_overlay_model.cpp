#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/grid_calculator.h"
#include "ui/snap_overlay_model.h"

#include <QTest>
#include <cmath>
#include <limits>

using namespace paneforge;

class TestSnapOverlayModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void desktopToView_data();
    void desktopToView();
    void maskCoversOutlinesAndChosenZonesOnly();
    void extremeMarginsStayOnTheDisplay_data();
    void extremeMarginsStayOnTheDisplay();
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

// The configuration keeps any margin as written. Laid out and drawn the way the snap controller and
// the overlay window do it, a 2 x 2 layout on a 1920 x 1080 display must still draw inside the
// view (the mask's pixel arithmetic overflowed, an abort under UBSan) and give a window a frame on
// the display or none at all (windows went to 65535 x 65535 off screen, or to 3 x 26 pixels).
void TestSnapOverlayModel::extremeMarginsStayOnTheDisplay_data() {
    QTest::addColumn<double>("margin");
    QTest::addColumn<QRectF>("wholeLayout"); // the target when every zone is chosen; null: none
    QTest::addColumn<QRectF>("topLeftZone");
    const QRectF display(0, 0, 1920, 1080);
    QTest::newRow("usual") << 8.0 << QRectF(8, 8, 1904, 1064) << QRectF(8, 544, 948, 528);
    QTest::newRow("-2e9") << -2e9 << display << display;
    QTest::newRow("-1e300") << -1e300 << display << display;
    QTest::newRow("-infinity") << -std::numeric_limits<double>::infinity() << display << display;
    QTest::newRow("1e100") << 1e100 << QRectF() << QRectF();
    QTest::newRow("largest double") << std::numeric_limits<double>::max() << QRectF() << QRectF();
    QTest::newRow("not a number") << std::nan("") << display << QRectF(0, 540, 960, 540);
}

void TestSnapOverlayModel::extremeMarginsStayOnTheDisplay() {
    QFETCH(double, margin);
    QFETCH(QRectF, wholeLayout);
    QFETCH(QRectF, topLeftZone);
    const DesktopRect visible(0, 0, 1920, 1080);
    const QRectF view(0, 0, 1920, 1080);
    const auto cells = GridCalculator().getCells(
        GridDefinition(QStringLiteral("q"), QStringLiteral("Q"), {0.5}, {0.5}));
    const CellFrames frames = CellFrameCalculator().getCellFrames(cells, visible, margin);
    QList<QRectF> outlines;
    std::vector<DesktopRect> all;
    for (const DesktopRect& frame : frames) {
        outlines.append(paneforge::desktopToView(frame, view, QPointF()));
        all.push_back(frame);
    }

    const SnapOverlayModel model(outlines, outlines, view);
    for (const QRectF& outline : model.outlines()) {
        QVERIFY(view.adjusted(-1, -1, 1, 1).contains(outline));
    }
    for (const QRectF& fill : model.fills()) {
        QVERIFY(view.contains(fill));
    }
    const QRegion mask = model.mask();
    QVERIFY(mask.isEmpty() || QRect(-1, -1, 1922, 1082).contains(mask.boundingRect()));

    const auto toQt = [](const std::optional<DesktopRect>& r) {
        return r ? QRectF(r->x(), r->y(), r->width(), r->height()) : QRectF();
    };
    QCOMPARE(toQt(CellFrameCalculator::snapTarget(all, visible)), wholeLayout);
    QCOMPARE(
        toQt(CellFrameCalculator::snapTarget({frames.value(QStringLiteral("r0-c0"))}, visible)),
        topLeftZone);
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
