#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/layouts/display_identifier.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace paneforge {

using DisplayId = std::uint32_t;

// Identity and naming of the attached displays.
class DisplayService {
public:
    virtual ~DisplayService() = default;

    // The active displays, in the window system's order.
    virtual std::vector<DisplayId> getActiveDisplays() = 0;
    // Never fails: a display that reports nothing still gets a stable identifier.
    virtual DisplayIdentifier getIdentifier(DisplayId displayId) = 0;
    virtual std::optional<QString> getDisplayName(DisplayId displayId) = 0;
    // "<name> [Built-in|External] (<stableId>) @ <w>x<h>", with " @ <x>,<y>" added for displays
    // without a serial number, so that two identical monitors can be told apart.
    virtual QString getDisplayTitle(DisplayId displayId) = 0;
    // "<stableId> @ <w>x<h>" per active display.
    virtual std::vector<QString> getDisplaySummaries() = 0;
};

// The title and summary forms, shared by the platform layers. `bounds` are the window system's
// top-left based bounds of the display.
namespace DisplayText {
QString title(const std::optional<QString>& name, const DisplayIdentifier& identifier, bool builtIn,
              const DesktopRect& bounds);
QString summary(const DisplayIdentifier& identifier, const DesktopRect& bounds);
} // namespace DisplayText

// Where the displays are. All geometry in desktop space.
class DisplayFrameService {
public:
    virtual ~DisplayFrameService() = default;

    virtual std::optional<DesktopRect> getFrame(DisplayId displayId) = 0;
    // The frame less menu bar, docks and panels.
    virtual std::optional<DesktopRect> getVisibleFrame(DisplayId displayId) = 0;
    // The display whose full frame contains the point (half-open); none in the gaps.
    virtual std::optional<DisplayId> getDisplayId(DesktopPoint point) = 0;
    virtual DesktopPoint pointerLocation() = 0;
    // The top edge of the primary display, read afresh each time.
    virtual double primaryMaxY() = 0;
};

} // namespace paneforge
