#include "ui/snap_overlay_model.h"

#include <QWidget>
#include <utility>

namespace paneforge {

QRectF desktopToGlobal(const DesktopRect& rect, const QRectF& primaryScreenGeometry) {
    const DesktopRect r = rect.standardized();
    // Desktop y = 0 is the primary screen's bottom edge.
    const double primaryBottom = primaryScreenGeometry.top() + primaryScreenGeometry.height();
    return QRectF(r.minX(), primaryBottom - r.maxY(), r.width(), r.height());
}

QRectF desktopToView(const DesktopRect& rect, const QRectF& primaryScreenGeometry,
                     QPointF windowOrigin) {
    return desktopToGlobal(rect, primaryScreenGeometry).translated(-windowOrigin);
}

namespace {

// The part of each rectangle inside `bounds`; rectangles that are not finite or have no part
// inside are dropped.
QList<QRectF> clipped(const QList<QRectF>& rects, const QRectF& bounds) {
    QList<QRectF> result;
    result.reserve(rects.size());
    for (const QRectF& rect : rects) {
        const QRectF r = rect.normalized();
        if (!(qIsFinite(r.x()) && qIsFinite(r.y()) && qIsFinite(r.width()) &&
              qIsFinite(r.height()))) {
            continue;
        }
        const QRectF inside = r.intersected(bounds);
        if (!inside.isEmpty()) {
            result.append(inside);
        }
    }
    return result;
}

} // namespace

SnapOverlayModel::SnapOverlayModel(QList<QRectF> outlines, QList<QRectF> fills,
                                   const QRectF& viewBounds)
    : outlines_(
          clipped(outlines, viewBounds.adjusted(-1, -1, 1, 1).intersected(largestViewBounds())))
    , fills_(clipped(fills, viewBounds.intersected(largestViewBounds()))) {}

QRectF SnapOverlayModel::largestViewBounds() {
    return QRectF(-QWIDGETSIZE_MAX, -QWIDGETSIZE_MAX, 2.0 * QWIDGETSIZE_MAX, 2.0 * QWIDGETSIZE_MAX);
}

QColor SnapOverlayModel::outlineColor() {
    QColor color(Qt::white);
    color.setAlphaF(0.22f);
    return color;
}

QColor SnapOverlayModel::fillColor(const QColor& accent) {
    QColor color = accent;
    color.setAlphaF(0.5f);
    return color;
}

QRegion SnapOverlayModel::mask() const {
    QRegion region;
    for (const QRectF& outline : outlines_) {
        const QRect r = outline.toAlignedRect();
        if (r.isEmpty())
            continue;
        region += QRect(r.left(), r.top(), r.width(), 1);
        region += QRect(r.left(), r.bottom(), r.width(), 1);
        region += QRect(r.left(), r.top(), 1, r.height());
        region += QRect(r.right(), r.top(), 1, r.height());
    }
    for (const QRectF& fill : fills_)
        region += fill.toAlignedRect();
    return region;
}

} // namespace paneforge
