#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/geometry/normalized_geometry.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace paneforge {

struct DisplaySortItem {
    std::uint32_t displayId = 0;
    DesktopRect frame; // the display's full frame

    friend bool operator==(const DisplaySortItem&, const DisplaySortItem&) = default;
};

// The fixed spatial order of displays: left to right, then bottom to top, then by id.
namespace DisplayCycle {
std::vector<DisplaySortItem> sortedDisplays(std::vector<DisplaySortItem> displays);
// The display after `current`, wrapping; the first display when `current` is not listed; none
// with fewer than two displays.
std::optional<std::uint32_t> nextId(std::uint32_t current,
                                    const std::vector<DisplaySortItem>& displays);
} // namespace DisplayCycle

// Carries a window's position and size, as fractions of one visible frame, onto another; the
// result keeps at least 5% of each extent and lies wholly inside the target.
namespace WindowDisplayMapper {
DesktopRect mappedFrame(const DesktopRect& windowFrame, const DesktopRect& sourceVisibleFrame,
                        const DesktopRect& targetVisibleFrame);
NormalizedRect normalizedRect(const DesktopRect& windowFrame, const DesktopRect& visibleFrame);
NormalizedRect clamp(const NormalizedRect& rect);
} // namespace WindowDisplayMapper

} // namespace paneforge
