#pragma once

#include "app/input/event_tap_manager.h"
#include "core/diagnostics/logger_factory.h"

namespace paneforge {

// EventTapApi on macOS: a listen-only Core Graphics session tap, its run-loop source on the main
// run loop, and the Input Monitoring preflight and request. Events reach the handler with the
// event's own location in Cocoa space (desktop space) and its device-independent modifier flags.
class MacEventTapApi final : public EventTapApi {
public:
    MacEventTapApi();

    bool preflightListenEventAccess() override;
    bool requestListenEventAccess() override;
    std::unique_ptr<EventTapHandle> createTap(std::uint64_t mask,
                                              InputEventHandler handler) override;
    bool startDelivery(EventTapHandle& tap) override;
    void stopDelivery(EventTapHandle& tap) override;
    void enableTap(EventTapHandle& tap) override;
    // Qt forwards the "Paneforge.EventTapManager" category to the unified system log.
    void systemLog(const QString& message) override;

private:
    Logger logger_;
};

} // namespace paneforge
