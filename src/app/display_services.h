#pragma once

#include "core/desktop_geometry.h"
#include "core/display_identifier.h"

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

    // The active displays, primary first.
    virtual std::vector<DisplayId> getActiveDisplays() = 0;
    // Never fails: a display that reports nothing still gets a stable identifier.
    virtual DisplayIdentifier getIdentifier(DisplayId displayId) = 0;
    virtual QString getName(DisplayId displayId) = 0;
    // The name, with " @ x,y" for displays without a serial number, so two identical monitors
    // can be told apart.
    virtual QString getTitle(DisplayId displayId) = 0;
    // One line for the log and the menus.
    virtual QString getSummary(DisplayId displayId) = 0;
};

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
