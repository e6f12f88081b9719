#pragma once

#include "app/ports/key_down_monitor_api.h"

#include <optional>

class QKeyEvent;

namespace paneforge {

// Key presses in Paneforge's own windows, seen through an application-wide Qt event filter, for
// recording hot keys. The key is reported as a macOS virtual key code on every platform: on macOS
// Qt's native virtual key is that code already; on X11 the native scan code is the X key code
// (evdev + 8), mapped through KeyCodeTable. Presses of modifier keys alone and of keys without a
// code pass through untouched; Caps Lock never counts as a modifier.
class QtKeyDownMonitor final : public KeyDownMonitorApi {
public:
    std::unique_ptr<Monitor> addLocalMonitor(Handler handler) override;

    static std::optional<KeyPress> toKeyPress(const QKeyEvent& event);
};

} // namespace paneforge
