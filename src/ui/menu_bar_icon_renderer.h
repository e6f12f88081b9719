#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>

class QPainter;

namespace paneforge {

// The status icon: a rounded square split into a tall left zone and two right zones, with a dot
// in the lower left, drawn on a 22 x 22 grid scaled to the requested size.
namespace MenuBarIconRenderer {
// Black on transparent, for the system to tint (macOS template image).
QImage makeTemplateImage(QSize size, qreal devicePixelRatio = 1.0);
// The same shape in another colour, for trays that show images as they are.
QImage makeImage(QSize size, const QColor& color, qreal devicePixelRatio = 1.0);
// Draws into a painter whose origin is the icon's top-left corner.
void drawIcon(QPainter& painter, QSizeF size, const QColor& color);
} // namespace MenuBarIconRenderer

} // namespace paneforge
