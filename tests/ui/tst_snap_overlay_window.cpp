// The snap overlay: its model (desktop to view coordinates, outlines, fills and mask for any
// margin) and its window (what it draws, its shape without a compositor, its native hook). That
// it opens over the whole visible frame: agent_snapping.

#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/grid_calculator.h"
#include "ui/snap_overlay_model.h"
#include "ui/snap_overlay_window.h"

#include <QApplication>
#include <QImage>
#include <QTest>
#include <cmath>
#include <limits>

using namespace paneforge;

namespace {

// The lower 200 points of a 400 x 300 primary screen, as two zones of 100 x 200 and a gap.
const DesktopRect kVisible(0, 0, 200, 200);
const QList<DesktopRect> kCells{DesktopRect(0, 0, 100, 200), DesktopRect(100, 0, 100, 200)};

SnapOverlayEnvironment environment(bool translucent) {
    return {[] { return QRectF(0, 0, 400, 300); }, [translucent] { return translucent; }, nullptr};
}

QImage render(SnapOverlayView& view) {
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

} // namespace

class SnapOverlayWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void desktopToView_data() {
        QTest::addColumn<DesktopRect>("desktop");
        QTest::addColumn<QRectF>("primary");
        QTest::addColumn<QPointF>("windowOrigin");
        QTest::addColumn<QRectF>("expected");
        const QRectF primary(0, 0, 1000, 800);
        QTest::newRow("window offset") << DesktopRect(10, 700, 100, 100) << primary
                                       << QPointF(5, 20) << QRectF(5, -20, 100, 100);
        QTest::newRow("display above primary") << DesktopRect(0, 800, 200, 100) << primary
                                               << QPointF(0, -100) << QRectF(0, 0, 200, 100);
        QTest::newRow("primary top edge not zero")
            << DesktopRect(0, 0, 100, 50) << QRectF(0, 300, 1000, 800) << QPointF()
            << QRectF(0, 1050, 100, 50);
    }
    void desktopToView() {
        QFETCH(DesktopRect, desktop);
        QFETCH(QRectF, primary);
        QFETCH(QPointF, windowOrigin);
        QTEST(paneforge::desktopToView(desktop, primary, windowOrigin), "expected");
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
        QTest::newRow("-infinity")
            << -std::numeric_limits<double>::infinity() << display << display;
        QTest::newRow("1e100") << 1e100 << QRectF() << QRectF();
        QTest::newRow("not a number") << std::nan("") << display << QRectF(0, 540, 960, 540);
    }
    void extremeMarginsStayOnTheDisplay() {
        QFETCH(double, margin);
        const DesktopRect visible(0, 0, 1920, 1080);
        const QRectF view(0, 0, 1920, 1080);
        const CellFrames frames = CellFrameCalculator().getCellFrames(
            GridCalculator().getCells(GridDefinition("q", "Q", {0.5}, {0.5})), visible, margin);
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
        QTEST(toQt(CellFrameCalculator::snapTarget(all, visible)), "wholeLayout");
        QTEST(toQt(CellFrameCalculator::snapTarget({frames.value("r0-c0")}, visible)),
              "topLeftZone");
    }

    void rendersOutlinesAndFill() {
        SnapOverlayWindow overlay(kVisible, environment(true));
        overlay.orderFront();
        overlay.update(GridDefinition("g", "Halves", {0.5}, {}), kCells, {kCells[1]});
        const QImage image = render(overlay.overlayView());
        // The left zone's edge pixels: white at alpha 0.22.
        const QColor edge = image.pixelColor(0, 50);
        QVERIFY2(edge.alpha() > 40 && edge.alpha() < 80, qPrintable(edge.name(QColor::HexArgb)));
        QVERIFY(edge.red() > 200 && edge.green() > 200 && edge.blue() > 200);
        QCOMPARE(image.pixelColor(99, 50).alpha(), edge.alpha());
        // Inside the unchosen zone: nothing at all.
        QCOMPARE(image.pixelColor(50, 50).alpha(), 0);
        // Inside the chosen zone: the accent colour at half alpha.
        const QColor fill = image.pixelColor(150, 50);
        QVERIFY2(fill.alpha() > 110 && fill.alpha() < 150, qPrintable(fill.name(QColor::HexArgb)));
        const QColor accent = SnapOverlayView::accentColor(overlay.overlayView().palette());
        QCOMPARE(fill.toRgb().hue() / 10, accent.toRgb().hue() / 10);
        // Nothing chosen: only the outlines.
        overlay.update(std::nullopt, kCells, {});
        QCOMPARE(render(overlay.overlayView()).pixelColor(150, 50).alpha(), 0);
    }

    void shapedWithoutCompositor() {
        SnapOverlayWindow translucent(kVisible, environment(true));
        translucent.update(std::nullopt, kCells, {kCells[1]});
        QVERIFY(translucent.overlayView().mask().isEmpty());

        SnapOverlayWindow shaped(kVisible, environment(false));
        shaped.update(std::nullopt, kCells, {kCells[1]});
        const QRegion mask = shaped.overlayView().mask();
        QVERIFY(mask.contains(QPoint(0, 50)) && mask.contains(QPoint(99, 50)));
        QVERIFY(!mask.contains(QPoint(50, 50)) && mask.contains(QPoint(150, 50)));
        // With nothing chosen the window stays see-through inside every zone.
        shaped.update(std::nullopt, kCells, {});
        QVERIFY(!shaped.overlayView().mask().contains(QPoint(150, 50)));
    }

    void runsTheNativeHookOnceEachTimeItIsShown() {
        int calls = 0;
        SnapOverlayEnvironment env = environment(true);
        env.configureNativeWindow = [&calls](QWidget& widget) { calls += widget.isVisible(); };
        SnapOverlayWindow overlay(kVisible, env);
        QCOMPARE(overlay.overlayView().geometry(), QRect(0, 100, 200, 200));
        overlay.orderFront();
        overlay.orderFront(); // already up: nothing to redo
        QCOMPARE(calls, 1);
        overlay.orderOut();
        QVERIFY(!overlay.overlayView().isVisible());
        overlay.orderFront();
        QCOMPARE(calls, 2);
    }
};

QTEST_MAIN(SnapOverlayWindowTest)
#include "tst_snap_overlay_window.moc"
