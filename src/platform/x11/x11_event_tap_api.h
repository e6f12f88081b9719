#pragma once

#include "app/event_tap_manager.h"
#include "core/logger_factory.h"

#include <QByteArray>

namespace paneforge {

// The global listen-only event source on X11: XInput 2 raw events (left button, motion, keys)
// selected on the root window over the agent's own XCB connection, read from Qt's event loop
// through a socket notifier on the connection (no thread, no polling). Raw events carry neither
// position nor modifier state, so each reported event comes with a pointer query; a burst of
// motion costs one query. A modifier change is reported only when the mask really changes (a key
// release can arrive twice). XInput 2.1 or later is required: with 2.0 raw events stop while the
// window manager grabs the pointer to move a window.
//
// X11 asks no permission for this: preflight and request always report access.
class X11EventTapApi final : public EventTapApi {
public:
    // displayName: none for $DISPLAY.
    explicit X11EventTapApi(const char* displayName = nullptr);

    bool preflightListenEventAccess() override { return true; }
    bool requestListenEventAccess() override { return true; }
    std::unique_ptr<EventTapHandle> createTap(std::uint64_t mask,
                                              InputEventHandler handler) override;
    bool addRunLoopSource(EventTapHandle& tap) override;
    void removeRunLoopSource(EventTapHandle& tap) override;
    void enableTap(EventTapHandle& tap) override;
    void systemLog(const QString& message) override;

private:
    QByteArray displayName_;
    bool hasDisplayName_ = false;
    Logger logger_;
};

} // namespace paneforge
