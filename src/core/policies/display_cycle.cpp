#include "core/policies/display_cycle.h"

#include "core/geometry/coordinate_transformer.h"

#include <algorithm>

namespace paneforge {

std::vector<DisplaySortItem> DisplayCycle::sortedDisplays(std::vector<DisplaySortItem> displays) {
    std::stable_sort(displays.begin(), displays.end(),
                     [](const DisplaySortItem& a, const DisplaySortItem& b) {
                         if (a.frame.minX() != b.frame.minX()) {
                             return a.frame.minX() < b.frame.minX();
                         }
                         if (a.frame.minY() != b.frame.minY()) {
                             return a.frame.minY() < b.frame.minY();
                         }
                         return a.displayId < b.displayId;
                     });
    return displays;
}

std::optional<std::uint32_t> DisplayCycle::nextId(std::uint32_t current,
                                                  const std::vector<DisplaySortItem>& displays) {
    const auto sorted = sortedDisplays(displays);
    if (sorted.size() < 2) {
        return std::nullopt;
    }
    const auto it = std::find_if(sorted.begin(), sorted.end(), [&](const DisplaySortItem& item) {
        return item.displayId == current;
    });
    if (it == sorted.end()) {
        return sorted.front().displayId;
    }
    const auto next = std::next(it);
    return next == sorted.end() ? sorted.front().displayId : next->displayId;
}

NormalizedRect WindowDisplayMapper::normalizedRect(const DesktopRect& window,
                                                   const DesktopRect& visible) {
    const double w = visible.width() == 0 ? 1.0 : visible.width();
    const double h = visible.height() == 0 ? 1.0 : visible.height();
    return {(window.minX() - visible.minX()) / w, (visible.maxY() - window.maxY()) / h,
            window.width() / w, window.height() / h};
}

NormalizedRect WindowDisplayMapper::clamp(const NormalizedRect& rect) {
    const double width = std::min(std::max(rect.width, 0.05), 1.0);
    const double height = std::min(std::max(rect.height, 0.05), 1.0);
    return {std::min(std::max(rect.x, 0.0), 1.0 - width),
            std::min(std::max(rect.y, 0.0), 1.0 - height), width, height};
}

DesktopRect WindowDisplayMapper::mappedFrame(const DesktopRect& windowFrame,
                                             const DesktopRect& sourceVisibleFrame,
                                             const DesktopRect& targetVisibleFrame) {
    return CoordinateTransformer().toFrame(clamp(normalizedRect(windowFrame, sourceVisibleFrame)),
                                           targetVisibleFrame);
}

} // namespace paneforge
