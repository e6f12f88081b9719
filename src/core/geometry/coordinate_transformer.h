#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/geometry/normalized_geometry.h"

#include <optional>

namespace paneforge {

// Converts between normalized layout coordinates (top-left origin of a visible frame, y down),
// desktop space (bottom-left origin of the primary display, y up) and accessibility space
// (top-left origin of the primary display, y down). `primaryMaxY` is the top edge of the primary
// display in desktop space.
class CoordinateTransformer {
public:
    DesktopRect toFrame(const NormalizedRect& rect, const DesktopRect& visibleFrame) const;

    // None when the point lies outside the frame (the right and top edges are outside).
    std::optional<NormalizedPoint> toNormalizedPoint(DesktopPoint point,
                                                     const DesktopRect& visibleFrame) const;

    DesktopPoint toAccessibilityOrigin(const DesktopRect& frame, double primaryMaxY) const;
    DesktopPoint toAccessibilityPoint(DesktopPoint point, double primaryMaxY) const;
    DesktopPoint toCocoaOrigin(DesktopPoint origin, DesktopSize size, double primaryMaxY) const;
};

} // namespace paneforge
