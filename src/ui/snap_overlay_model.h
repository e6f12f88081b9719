#pragma once

#include "core/geometry/desktop_geometry.h"

#include <QColor>
#include <QList>
#include <QRectF>
#include <QRegion>

namespace paneforge {

// Desktop space (bottom-left origin of the primary display, y up) to Qt's global coordinates
// (top-left origin of the primary screen, y down). The primary screen's geometry must be read
// afresh by the caller: it moves when displays are rearranged.
QRectF desktopToGlobal(const DesktopRect& rect, const QRectF& primaryScreenGeometry);
// Desktop space to the coordinates of a view whose window sits at windowOrigin (global).
QRectF desktopToView(const DesktopRect& rect, const QRectF& primaryScreenGeometry,
                     QPointF windowOrigin);

// What the overlay draws, in view coordinates: every zone outline first, then the chosen zones
// filled on top. The widget only paints what this says, so the rules are tested here.
//
// Zones come from margins stored as the user wrote them, so they can reach far beyond the view or
// hold no number at all. Only their part inside the view matters and only that is kept (outlines
// within a pixel more, so that a border beyond the view's edge stays out of sight); what is not
// finite or has nothing inside is dropped. Pixel arithmetic on what remains cannot overflow.
class SnapOverlayModel {
public:
    SnapOverlayModel() = default;
    SnapOverlayModel(QList<QRectF> outlines, QList<QRectF> fills,
                     const QRectF& viewBounds = largestViewBounds());

    // The largest area a view can have; what lies beyond it is never drawn.
    static QRectF largestViewBounds();

    const QList<QRectF>& outlines() const { return outlines_; }
    const QList<QRectF>& fills() const { return fills_; }

    static QColor outlineColor();
    static QColor fillColor(const QColor& accent);
    static constexpr double outlineWidth = 1.0;

    // Without a compositor transparent pixels show black, so the window is shaped instead: the
    // outlines' one-pixel borders and the chosen zones, nothing else.
    QRegion mask() const;

private:
    QList<QRectF> outlines_;
    QList<QRectF> fills_;
};

} // namespace paneforge
