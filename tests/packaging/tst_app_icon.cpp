#include "ui/menu_bar_icon_renderer.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QTest>

using namespace paneforge;

namespace {

constexpr int kSize = 220;
// Where packaging/icons/paneforge.svg puts the tray icon's 22-point grid: scaled by 0.75 about
// the tile's centre.
constexpr qreal kGlyphScale = 0.75;
constexpr qreal kGlyphOffset = 2.75;

QImage renderSvg() {
    QSvgRenderer renderer(QStringLiteral(PANEFORGE_ICON_SVG));
    QImage image(kSize, kSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, kSize, kSize));
    return image;
}

// The tray icon as the agent draws it, placed where the SVG places its glyph.
QImage renderTrayGlyph() {
    QImage image(kSize, kSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const qreal unit = kSize / 22.0;
    painter.translate(kGlyphOffset * unit, kGlyphOffset * unit);
    MenuBarIconRenderer::drawIcon(painter, QSizeF(kSize, kSize) * kGlyphScale, Qt::white);
    return image;
}

bool isGlyph(QRgb svgPixel) {
    return qAlpha(svgPixel) > 200 && qRed(svgPixel) > 160 && qGreen(svgPixel) > 160 &&
           qBlue(svgPixel) > 200;
}

} // namespace

class AppIconTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The white glyph of the application icon covers the same pixels as the tray icon's shape.
    void glyphIsTheTrayIcon() {
        const QImage svg = renderSvg();
        const QImage tray = renderTrayGlyph();
        int glyphPixels = 0;
        int mismatches = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                const bool inTray = qAlpha(tray.pixel(x, y)) > 160;
                const bool trayEdge = qAlpha(tray.pixel(x, y)) > 40 && !inTray;
                glyphPixels += inTray ? 1 : 0;
                // Anti-aliased edges may fall either way.
                if (!trayEdge && inTray != isGlyph(svg.pixel(x, y))) {
                    ++mismatches;
                }
            }
        }
        QVERIFY(glyphPixels > 2000);
        QVERIFY2(
            mismatches < glyphPixels / 50,
            qPrintable(QStringLiteral("%1 of %2 pixels differ").arg(mismatches).arg(glyphPixels)));
    }

    void tileAroundTheGlyph() {
        const QImage svg = renderSvg();
        // The corners are transparent, the tile blue, the zones inside the glyph blue too.
        QCOMPARE(qAlpha(svg.pixel(1, 1)), 0);
        QCOMPARE(qAlpha(svg.pixel(kSize - 2, kSize - 2)), 0);
        for (const QPoint point : {QPoint(kSize / 2, 20), QPoint(kSize * 3 / 10, kSize * 4 / 10),
                                   QPoint(kSize * 7 / 10, kSize * 7 / 10)}) {
            const QColor color = svg.pixelColor(point);
            QCOMPARE(color.alpha(), 255);
            QVERIFY2(color.blue() > 200 && color.red() < 100, qPrintable(color.name()));
        }
    }
};

QTEST_GUILESS_MAIN(AppIconTest)
#include "tst_app_icon.moc"
