#include "ui/menu_bar_icon_renderer.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace paneforge {

namespace {
constexpr qreal kGrid = 22.0;
}

void MenuBarIconRenderer::drawIcon(QPainter& painter, QSizeF size, const QColor& color) {
    const qreal scale = std::min(size.width(), size.height()) / kGrid;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    // The design grid has its origin at the bottom left, y up.
    painter.translate(0, kGrid * scale);
    painter.scale(scale, -scale);

    QPen pen(color, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(3, 3, 16, 16), 3, 3);
    painter.drawLine(QPointF(11, 3), QPointF(11, 19));
    painter.drawLine(QPointF(11, 11), QPointF(19, 11));

    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QRectF(5.5, 5.5, 3, 3));
    painter.restore();
}

QImage MenuBarIconRenderer::makeImage(QSize size, const QColor& color, qreal devicePixelRatio) {
    QImage image(size * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawIcon(painter, QSizeF(size), color);
    return image;
}

QImage MenuBarIconRenderer::makeTemplateImage(QSize size, qreal devicePixelRatio) {
    return makeImage(size, Qt::black, devicePixelRatio);
}

} // namespace paneforge
