#pragma once

#include "app/input/event_tap_manager.h"
#include "core/diagnostics/logger_factory.h"

#include <QByteArray>
#include <optional>

namespace paneforge {

// The global listen-only event source on X11, behind EventTapApi: XInput 2 raw events (left
// button, motion, keys) selected on the root window over a connection of the tap's own, read from
// Qt's event loop through a socket notifier on the connection (no thread, no polling).
//
// Raw events carry neither a position nor the modifier state. The tap asks the server for the
// pointer when it reports an event; a burst of motion is one drag and costs one query. The
// modifiers follow the raw key events through the server's modifier mapping, so every event
// carries the modifiers as of that event; a change is reported only when the modifier mask really
// changes (a key release can arrive twice, and keys that are no modifiers change nothing).
// Positions are in desktop space (X11DesktopSpace), flags are the device-independent flags of
// InputEvent. XInput 2.1 or later is
// required: with 2.0, raw events stop while the window manager grabs the pointer to move a window.
//
// X11 has no permission for listening: preflight and request always report access. The tap
// delivers once its source is added and it is enabled; dropping the tap closes its connection.
class X11EventTapApi final : public EventTapApi {
public:
    // displayName: nullptr for $DISPLAY.
    explicit X11EventTapApi(const char* displayName = nullptr);

    bool preflightListenEventAccess() override { return true; }
    bool requestListenEventAccess() override { return true; }
    std::unique_ptr<EventTapHandle> createTap(std::uint64_t mask,
                                              InputEventHandler handler) override;
    bool startDelivery(EventTapHandle& tap) override;
    void stopDelivery(EventTapHandle& tap) override;
    void enableTap(EventTapHandle& tap) override;
    void systemLog(const QString& message) override;

private:
    std::optional<QByteArray> displayName_;
    Logger logger_;
};

} // namespace paneforge
