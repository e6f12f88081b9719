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
    void desktopToView_data() {
        QTest::addColumn<DesktopRect>("desktop");
        QTest::addColumn<QRectF>("primary");
        QTest::addColumn<QPointF>("windowOrigin");
        QTest::addColumn<QRectF>("expected");
        const auto row = [](const char* tag, DesktopRect desktop, QRectF primary, QPointF origin,
                            QRectF expected) {
            QTest::newRow(tag) << desktop << primary << origin << expected;
        };
        const QRectF primary(0, 0, 1000, 800);
        row("primary, window at origin", {0, 0, 100, 50}, primary, {0, 0}, {0, 750, 100, 50});
        row("top of primary", {10, 700, 100, 100}, primary, {0, 0}, {10, 0, 100, 100});
        row("window offset", {10, 700, 100, 100}, primary, {5, 20}, {5, -20, 100, 100});
        row("display above primary", {0, 800, 200, 100}, primary, {0, -100}, {0, 0, 200, 100});
        row("primary top edge not zero", {0, 0, 100, 50}, {0, 300, 1000, 800}, {0, 0},
            {0, 1050, 100, 50});
    }
    void desktopToView() {
        QFETCH(DesktopRect, desktop);
        QFETCH(QRectF, primary);
        QFETCH(QPointF, windowOrigin);
        QFETCH(QRectF, expected);
        QCOMPARE(paneforge::desktopToView(desktop, primary, windowOrigin), expected);
    }

    // The configuration keeps any margin as written. Laid out and drawn the way the snap controller
    // and the overlay window do it, a 2 x 2 layout on a 1920 x 1080 display must still draw inside
    // the view (the mask's pixel arithmetic overflowed, an abort under UBSan) and give a window a
    // frame on the display or none at all (windows went to 65535 x 65535 off screen, or to 3 x 26
    // pixels).
    void extremeMarginsStayOnTheDisplay_data() {
        QTest::addColumn<double>("margin");
        QTest::addColumn<QRectF>("wholeLayout"); // the target when every zone is chosen; null: none
        QTest::addColumn<QRectF>("topLeftZone");
        const QRectF display(0, 0, 1920, 1080);
        QTest::newRow("usual") << 8.0 << QRectF(8, 8, 1904, 1064) << QRectF(8, 544, 948, 528);
        QTest::newRow("-2e9") << -2e9 << display << display;
        QTest::newRow("-1e300") << -1e300 << display << display;
        QTest::newRow("-infinity")
            << -std::numeric_limits<double>::infinity() << display << display;
        QTest::newRow("1e100") << 1e100 << QRectF() << QRectF();
        QTest::newRow("largest double")
            << std::numeric_limits<double>::max() << QRectF() << QRectF();
        QTest::newRow("not a number") << std::nan("") << display << QRectF(0, 540, 960, 540);
    }
    void extremeMarginsStayOnTheDisplay() {
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
};

QTEST_GUILESS_MAIN(TestSnapOverlayModel)
#include "tst_snap_overlay_model.moc"
