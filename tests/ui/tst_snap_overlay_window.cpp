#include "ui/snap_overlay_window.h"

#include <QApplication>
#include <QImage>
#include <QTest>

using namespace paneforge;

namespace {

const QRectF kPrimary(0, 0, 400, 300);
// The lower 200 points of the primary screen, as two zones of 100 x 200 and a gap.
const DesktopRect kVisible(0, 0, 200, 200);
const QList<DesktopRect> kCells{DesktopRect(0, 0, 100, 200), DesktopRect(100, 0, 100, 200)};

SnapOverlayEnvironment environment(bool translucent) {
    return SnapOverlayEnvironment{[] { return kPrimary; }, [translucent] { return translucent; },
                                  nullptr};
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
    void rendersOutlinesAndFill() {
        SnapOverlayWindow overlay(kVisible, environment(true));
        overlay.orderFront();
        const GridDefinition grid(QStringLiteral("g"), QStringLiteral("Halves"), {0.5}, {});
        overlay.update(grid, kCells, {kCells[1]});
        const QImage image = render(overlay.overlayView());
        // The left zone's edge pixels: white at alpha 0.22.
        const QColor edge = image.pixelColor(0, 50);
        QVERIFY2(edge.alpha() > 40 && edge.alpha() < 80, qPrintable(edge.name(QColor::HexArgb)));
        QVERIFY(edge.red() > 200 && edge.green() > 200 && edge.blue() > 200);
        QCOMPARE(image.pixelColor(99, 50).alpha(), edge.alpha());
        QCOMPARE(image.pixelColor(50, 0).alpha(), edge.alpha());
        // Inside the unchosen zone: nothing at all.
        QCOMPARE(image.pixelColor(50, 50).alpha(), 0);
        // Inside the chosen zone: the accent colour at half alpha.
        const QColor fill = image.pixelColor(150, 50);
        QVERIFY2(fill.alpha() > 110 && fill.alpha() < 150, qPrintable(fill.name(QColor::HexArgb)));
        const QColor accent = SnapOverlayView::accentColor(overlay.overlayView().palette());
        QCOMPARE(fill.toRgb().hue() / 10, accent.toRgb().hue() / 10);
        // Nothing chosen: only the outlines.
        overlay.update(std::nullopt, kCells, {});
        const QImage outlines = render(overlay.overlayView());
        QVERIFY(outlines.pixelColor(100, 50).alpha() > 0);
        QCOMPARE(outlines.pixelColor(150, 50).alpha(), 0);
    }

    void shapedWithoutCompositor() {
        SnapOverlayWindow translucent(kVisible, environment(true));
        translucent.update(std::nullopt, kCells, {kCells[1]});
        QVERIFY(!translucent.isShaped());
        QVERIFY(translucent.overlayView().mask().isEmpty());

        SnapOverlayWindow shaped(kVisible, environment(false));
        QVERIFY(shaped.isShaped());
        shaped.update(std::nullopt, kCells, {kCells[1]});
        const QRegion mask = shaped.overlayView().mask();
        QVERIFY(mask.contains(QPoint(0, 50)) && mask.contains(QPoint(99, 50)));
        QVERIFY(!mask.contains(QPoint(50, 50)));
        QVERIFY(mask.contains(QPoint(150, 50)));
        // With nothing chosen the window stays see-through inside every zone.
        shaped.update(std::nullopt, kCells, {});
        QVERIFY(!shaped.overlayView().mask().contains(QPoint(150, 50)));
    }

    void coversTheVisibleFrameAndRunsTheNativeHookWhenShown() {
        int calls = 0;
        SnapOverlayEnvironment env = environment(true);
        env.configureNativeWindow = [&calls](QWidget& widget) {
            QVERIFY(widget.isVisible());
            ++calls;
        };
        SnapOverlayWindow overlay(kVisible, env);
        QCOMPARE(overlay.overlayView().geometry(), QRect(0, 100, 200, 200));
        QCOMPARE(calls, 0);
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
