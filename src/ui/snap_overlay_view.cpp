#include "ui/snap_overlay_view.h"

#include <QPainter>
#include <QPalette>
#include <QPen>
#include <utility>

namespace paneforge {

SnapOverlayView::SnapOverlayView(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SnapOverlayView::setModel(SnapOverlayModel model) {
    model_ = std::move(model);
    QWidget::update();
}

QColor SnapOverlayView::accentColor(const QPalette& palette) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    return palette.color(QPalette::Accent);
#else
    return palette.color(QPalette::Highlight);
#endif
}

void SnapOverlayView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    QPen pen(SnapOverlayModel::outlineColor());
    pen.setWidthF(SnapOverlayModel::outlineWidth);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    for (const QRectF& outline : model_.outlines()) {
        // Inset half a pixel so the 1-pixel line lies on the zone's own edge pixels.
        const QRect r = outline.toAlignedRect();
        painter.drawRect(QRectF(r).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    const QColor fill = SnapOverlayModel::fillColor(accentColor(palette()));
    for (const QRectF& zone : model_.fills())
        painter.fillRect(zone.toAlignedRect(), fill);
}

} // namespace paneforge
