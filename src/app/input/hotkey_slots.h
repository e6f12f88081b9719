#pragma once

#include "app/runtime/notification_center.h"
#include "core/config/paneforge_config.h"

#include <QString>
#include <array>
#include <cstdint>
#include <optional>

namespace paneforge {

// The six global hot keys by their fixed ids. Registration, the preferences' setters and the
// change notifications all loop over this one table.
enum class HotkeySlotId : std::uint32_t {
    OpenEditor = 1,
    OpenPreferences = 2,
    OpenLayoutSelector = 3,
    MoveToNextDisplay = 4,
    NextLayout = 5,
    PreviousLayout = 6,
};

struct HotkeySlot {
    HotkeySlotId slot;
    // The configuration field that holds the combination.
    const std::optional<HotkeyDefinition>& (PaneforgeConfig::*get)() const;
    PaneforgeConfig (PaneforgeConfig::*set)(std::optional<HotkeyDefinition>) const;
    // Posted by the field's setter, before "PaneforgeConfigChanged".
    Notification changed;
    // The name in the registration's diagnostic line ("OpenEditor hotkey: ..."); empty for the
    // slots whose registration the hot-key manager's own lines describe well enough.
    QLatin1StringView logName;

    std::uint32_t id() const { return static_cast<std::uint32_t>(slot); }
    std::optional<HotkeyDefinition> read(const PaneforgeConfig& config) const {
        return (config.*get)();
    }
    PaneforgeConfig write(const PaneforgeConfig& config,
                          std::optional<HotkeyDefinition> hotkey) const {
        return (config.*set)(std::move(hotkey));
    }
};

// In id order.
const std::array<HotkeySlot, 6>& hotkeySlots();
const HotkeySlot& hotkeySlot(HotkeySlotId slot);

} // namespace paneforge
