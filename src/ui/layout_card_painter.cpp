#include "ui/layout_card_painter.h"

#include "core/layouts/layout_thumbnail_renderer.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace paneforge {

namespace {

constexpr double kCornerRadius = 8;
constexpr double kThumbnailRadius = 4;
constexpr double kCellRadius = 2;
constexpr double kCellMargin = 2;
constexpr double kNamePixelSize = 11;

void strokeRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                       double width) {
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    // The line lies inside the rectangle, like a layer's border.
    const double inset = width / 2;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
}

} // namespace

LayoutCardColors LayoutCardColors::from(const QPalette& palette) {
    LayoutCardColors colors;
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    colors.accent = palette.color(QPalette::Accent);
#else
    colors.accent = palette.color(QPalette::Highlight);
#endif
    colors.focusRing = palette.color(QPalette::Highlight);
    colors.separator = palette.color(QPalette::Mid);
    colors.label = palette.color(QPalette::WindowText);
    colors.thumbnailBackground = palette.color(QPalette::Base);
    colors.cardBackground = palette.color(QPalette::Window);
    return colors;
}

QRectF LayoutCardPainter::thumbnailRect(const QSizeF& size) {
    return {6, 12, size.width() - 12, size.height() - 40};
}

QRectF LayoutCardPainter::nameRect(const QSizeF& size) {
    return {6, size.height() - 24, size.width() - 12, 18};
}

void LayoutCardPainter::paint(QPainter& painter, const QRectF& card, const GridDefinition& grid,
                              const QString& name, LayoutCardState state,
                              const LayoutCardColors& colors) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(card.topLeft());
    const QRectF bounds(QPointF(0, 0), card.size());

    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.cardBackground);
    painter.drawRoundedRect(bounds, kCornerRadius, kCornerRadius);
    if (state.isFocused) {
        // A tint as well as the ring: where the palette's accent and focus colours are the same,
        // the focused card still stands apart from the active one.
        QColor tint = colors.focusRing;
        tint.setAlphaF(0.14F);
        painter.setBrush(tint);
        painter.drawRoundedRect(bounds, kCornerRadius, kCornerRadius);
    }

    const QRectF thumbnail = thumbnailRect(card.size());
    painter.setBrush(colors.thumbnailBackground);
    painter.drawRoundedRect(thumbnail, kThumbnailRadius, kThumbnailRadius);
    QColor cellFill = colors.accent;
    cellFill.setAlphaF(0.35F);
    painter.setBrush(cellFill);
    painter.setPen(QPen(colors.accent, 1));
    // The renderer works y up; the card flips at its own boundary.
    const DesktopRect cellBounds(0, 0, thumbnail.width(), thumbnail.height());
    for (const DesktopRect& cell :
         LayoutThumbnailRenderer::cellFrames(grid, cellBounds, kCellMargin)) {
        const QRectF rect(thumbnail.left() + cell.minX(),
                          thumbnail.top() + thumbnail.height() - cell.maxY(), cell.width(),
                          cell.height());
        painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), kCellRadius, kCellRadius);
    }

    QFont font = painter.font();
    font.setPixelSize(int(kNamePixelSize));
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    painter.setPen(colors.label);
    const QRectF nameBox = nameRect(card.size());
    painter.drawText(nameBox, Qt::AlignCenter,
                     QFontMetricsF(font).elidedText(name, Qt::ElideRight, nameBox.width()));

    if (state.isFocused) {
        strokeRoundedRect(painter, bounds, kCornerRadius, colors.focusRing, 3);
    } else if (state.isActive) {
        strokeRoundedRect(painter, bounds, kCornerRadius, colors.accent, 2);
    } else {
        strokeRoundedRect(painter, bounds, kCornerRadius, colors.separator, 1);
    }
    if (state.isActive && state.isFocused) {
        strokeRoundedRect(painter, bounds.adjusted(4, 4, -4, -4), 5, colors.accent, 2);
    }
    painter.restore();
}

} // namespace paneforge
