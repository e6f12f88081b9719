#include "core/geometry/coordinate_transformer.h"

namespace paneforge {

DesktopRect CoordinateTransformer::toFrame(const NormalizedRect& rect,
                                           const DesktopRect& visibleFrame) const {
    const double width = visibleFrame.width();
    const double height = visibleFrame.height();
    return DesktopRect(visibleFrame.minX() + rect.x * width,
                       visibleFrame.maxY() - (rect.y + rect.height) * height, rect.width * width,
                       rect.height * height);
}

std::optional<NormalizedPoint>
CoordinateTransformer::toNormalizedPoint(DesktopPoint point,
                                         const DesktopRect& visibleFrame) const {
    if (!visibleFrame.contains(point)) {
        return std::nullopt;
    }
    return NormalizedPoint{(point.x - visibleFrame.minX()) / visibleFrame.width(),
                           (visibleFrame.maxY() - point.y) / visibleFrame.height()};
}

DesktopPoint CoordinateTransformer::toAccessibilityOrigin(const DesktopRect& frame,
                                                          double primaryMaxY) const {
    return {frame.minX(), primaryMaxY - frame.maxY()};
}

DesktopPoint CoordinateTransformer::toAccessibilityPoint(DesktopPoint point,
                                                         double primaryMaxY) const {
    return {point.x, primaryMaxY - point.y};
}

DesktopPoint CoordinateTransformer::toCocoaOrigin(DesktopPoint origin, DesktopSize size,
                                                  double primaryMaxY) const {
    return {origin.x, primaryMaxY - origin.y - size.height};
}

} // namespace paneforge
