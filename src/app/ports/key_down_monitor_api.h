#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace paneforge {

// One key press in Paneforge's own windows: the key as a macOS virtual key code (on every
// platform) and the modifiers held, in the stored mask (modifier_bits). Presses of modifier keys
// alone, Caps Lock included, are not key presses.
struct KeyPress {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;

    friend bool operator==(const KeyPress&, const KeyPress&) = default;
};

// Watches key presses addressed to Paneforge's own windows (macOS: a local monitor for key-down
// events; with Qt: an application-wide event filter).
class KeyDownMonitorApi {
public:
    // An installed monitor; dropping it removes the monitor.
    class Monitor {
    public:
        virtual ~Monitor() = default;
    };

    // Returns true to swallow the press. The handler may drop its own monitor while it runs;
    // implementations keep the handler alive until it returns.
    using Handler = std::function<bool(const KeyPress&)>;

    virtual ~KeyDownMonitorApi() = default;
    virtual std::unique_ptr<Monitor> addLocalMonitor(Handler handler) = 0;
};

} // namespace paneforge
