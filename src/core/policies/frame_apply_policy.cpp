#include "core/policies/frame_apply_policy.h"

#include <cmath>

namespace paneforge {

bool FrameApplyPolicy::originNeedsRetry(const DesktopRect& requested,
                                        const std::optional<DesktopRect>& actual,
                                        double tolerance) {
    if (!actual) {
        return true;
    }
    return std::abs(requested.minX() - actual->minX()) > tolerance ||
           std::abs(requested.minY() - actual->minY()) > tolerance;
}

std::optional<int>
WindowCandidatePicker::pickIndex(DesktopPoint point,
                                 const std::vector<std::optional<DesktopRect>>& frames,
                                 std::optional<int> focusedIndex) {
    for (size_t i = 0; i < frames.size(); ++i) {
        if (frames[i] && frames[i]->contains(point)) {
            return static_cast<int>(i);
        }
    }
    if (focusedIndex && *focusedIndex >= 0 && *focusedIndex < static_cast<int>(frames.size())) {
        return focusedIndex;
    }
    return std::nullopt;
}

bool WindowRolePolicy::isMovableWindow(const QString& role) {
    return role == windowRole;
}

bool WindowRolePolicy::isApplication(const QString& role) {
    return role == applicationRole;
}

} // namespace paneforge
