#pragma once

#include "core/geometry/desktop_geometry.h"

#include <cstdint>
#include <functional>

namespace paneforge {

// One global mouse or modifier event, as the event sources of both platforms deliver it.
struct InputEvent {
    // The platform's event type numbers (the macOS event tap's values on every platform).
    enum Type : std::uint32_t {
        LeftMouseDown = 1,
        LeftMouseUp = 2,
        LeftMouseDragged = 6,
        FlagsChanged = 12,
        TapDisabledByTimeout = 0xFFFFFFFE,
        TapDisabledByUserInput = 0xFFFFFFFF,
    };

    std::uint32_t type = 0;
    DesktopPoint location; // desktop space
    // Device-independent modifier flags (Command 0x100000, Option 0x80000, Control 0x40000,
    // Shift 0x20000); ModifierMapper turns them into the stored mask.
    std::uint32_t flags = 0;

    friend bool operator==(const InputEvent&, const InputEvent&) = default;
};

using InputEventHandler = std::function<void(const InputEvent&)>;

} // namespace paneforge
