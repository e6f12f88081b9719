#pragma once

#include "app/ports/input_event.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/scheduler.h"

#include <QString>
#include <memory>
#include <vector>

namespace paneforge {

// An installed listen-only tap, as the platform adapter keeps it. Dropping it releases the tap
// and stops its delivery, if any.
class EventTapHandle {
public:
    virtual ~EventTapHandle() = default;
};

// The platform calls the event tap manager needs, one to one.
class EventTapApi {
public:
    virtual ~EventTapApi() = default;
    virtual bool preflightListenEventAccess() = 0;
    virtual bool requestListenEventAccess() = 0;
    // A listen-only session tap for the event types in `mask`, delivering to `handler`; none
    // when the system refuses (no permission yet).
    virtual std::unique_ptr<EventTapHandle> createTap(std::uint64_t mask,
                                                      InputEventHandler handler) = 0;
    // Connects the tap to the main event loop so that its events reach the handler; false when
    // the platform cannot (macOS: no run-loop source could be made).
    virtual bool startDelivery(EventTapHandle& tap) = 0;
    virtual void stopDelivery(EventTapHandle& tap) = 0;
    virtual void enableTap(EventTapHandle& tap) = 0;
    // The platform's own log (not the diagnostic file).
    virtual void systemLog(const QString& message) = 0;
};

// Installs and keeps alive one listen-only global event tap, retrying on a timer until the
// input-monitoring permission lets it, and starting over when the permission is cleared.
class EventTapManager {
public:
    EventTapManager(EventTapApi& api, Scheduler& scheduler, NotificationCenter& notifications);

    static std::uint64_t makeEventMask(const std::vector<std::uint32_t>& types);
    static std::uint64_t eventMask(); // down, dragged, up, flags changed: 0x1046

    void setHandler(InputEventHandler handler) { handler_ = std::move(handler); }

    // Starts over with a fresh tap: follows the grant-cleared notification, drops any installed
    // tap and pending retry, and attempts an installation at once (retrying until it works).
    void arm();

    void observeListenEventGrantCleared();
    void stopInstalledTap();
    void stopRetry();
    void attemptInstall();
    void requestListenEventAccessIfNeeded();

    bool isTapInstalled() const { return isTapInstalled_; }
    bool isRetrying() const { return retryTimer_ != nullptr; }
    double retryIntervalSeconds() const { return retryIntervalSeconds_; }

private:
    void scheduleRetryIfNeeded();
    void installRunLoopSource();

    EventTapApi& api_;
    Scheduler& scheduler_;
    NotificationCenter& notifications_;
    InputEventHandler handler_;
    std::unique_ptr<EventTapHandle> eventTap_;
    bool hasRunLoopSource_ = false;
    ScheduledWorkHandle retryTimer_;
    bool didRequestListenAccess_ = false;
    double retryIntervalSeconds_ = 1.0;
    NotificationCenter::ObservationToken listenEventClearedObserver_;
    bool isTapInstalled_ = false;
    // Scheduled work holds this weakly and does nothing once the manager is gone.
    std::shared_ptr<EventTapManager*> self_;
};

} // namespace paneforge
