#pragma once

#include "core/geometry/desktop_geometry.h"

#include <QPoint>
#include <QRect>

namespace paneforge {

// The one place where X11 root coordinates (top-left origin, y down) meet desktop space
// (bottom-left origin of the primary display, y up). The primary display's geometry is read afresh
// from Qt on every conversion, so a rearranged desktop is picked up at once.
namespace X11DesktopSpace {
QRect primaryGeometry();
double primaryMaxY();
DesktopPoint toDesktop(QPointF rootPoint);
QPointF toRoot(DesktopPoint point);
DesktopRect toDesktop(const QRectF& rootRect);
QRectF toRoot(const DesktopRect& rect);
} // namespace X11DesktopSpace

} // namespace paneforge
