#include "ui/snap_overlay_model.h"

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

SnapOverlayModel::SnapOverlayModel(QList<QRectF> outlines, QList<QRectF> fills)
    : outlines_(std::move(outlines))
    , fills_(std::move(fills)) {}

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
