#pragma once

#include "core/geometry/desktop_geometry.h"

#include <QString>
#include <optional>
#include <vector>

namespace paneforge {

namespace FrameApplyPolicy {
// After a drag ends the frame is applied once at once and once more after this delay, because
// some applications move their window again when the button is released.
inline constexpr double postDragReapplyDelay = 0.08;
// The tolerance the window services use when checking where a window really went.
inline constexpr double originTolerance = 2.0;

// True when there is no actual frame, or when its minimum x or y is further than `tolerance`
// from the requested one (strictly). Sizes are not compared: applications round them.
bool originNeedsRetry(const DesktopRect& requested, const std::optional<DesktopRect>& actual,
                      double tolerance);
} // namespace FrameApplyPolicy

namespace WindowCandidatePicker {
// The first window whose frame contains the point, else the focused window when its index is in
// range, else none.
std::optional<int> pickIndex(DesktopPoint point,
                             const std::vector<std::optional<DesktopRect>>& frames,
                             std::optional<int> focusedIndex);
} // namespace WindowCandidatePicker

namespace WindowRolePolicy {
inline const QString windowRole = QStringLiteral("AXWindow");
inline const QString applicationRole = QStringLiteral("AXApplication");
// Exact, case-sensitive comparisons; subroles play no part.
bool isMovableWindow(const QString& role);
bool isApplication(const QString& role);
} // namespace WindowRolePolicy

} // namespace paneforge
