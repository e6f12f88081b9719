#include "app/input/event_tap_manager.h"

namespace paneforge {

EventTapManager::EventTapManager(EventTapApi& api, Scheduler& scheduler,
                                 NotificationCenter& notifications)
    : api_(api)
    , scheduler_(scheduler)
    , notifications_(notifications)
    , self_(std::make_shared<EventTapManager*>(this)) {}

std::uint64_t EventTapManager::makeEventMask(const std::vector<std::uint32_t>& types) {
    std::uint64_t mask = 0;
    for (const std::uint32_t type : types) {
        if (type < 64) {
            mask |= std::uint64_t{1} << type;
        }
    }
    return mask;
}

std::uint64_t EventTapManager::eventMask() {
    return makeEventMask({InputEvent::LeftMouseDown, InputEvent::LeftMouseDragged,
                          InputEvent::LeftMouseUp, InputEvent::FlagsChanged});
}

void EventTapManager::arm() {
    observeListenEventGrantCleared();
    stopInstalledTap();
    stopRetry();
    attemptInstall();
}

void EventTapManager::observeListenEventGrantCleared() {
    if (listenEventClearedObserver_) {
        return;
    }
    std::weak_ptr<EventTapManager*> weak = self_;
    listenEventClearedObserver_ =
        notifications_.observe(notifications::kListenEventGrantCleared, [weak] {
            if (const auto self = weak.lock()) {
                EventTapManager& manager = **self;
                manager.didRequestListenAccess_ = false;
                manager.stopInstalledTap();
                manager.requestListenEventAccessIfNeeded();
                manager.attemptInstall();
            }
        });
}

void EventTapManager::stopInstalledTap() {
    if (eventTap_ && hasRunLoopSource_) {
        api_.stopDelivery(*eventTap_);
    }
    hasRunLoopSource_ = false;
    eventTap_.reset();
    isTapInstalled_ = false;
}

void EventTapManager::stopRetry() {
    if (retryTimer_) {
        retryTimer_->cancel();
        retryTimer_.reset();
    }
    retryIntervalSeconds_ = 1.0;
}

void EventTapManager::requestListenEventAccessIfNeeded() {
    if (didRequestListenAccess_) {
        return;
    }
    didRequestListenAccess_ = true;
    const bool granted = api_.requestListenEventAccess();
    api_.systemLog(
        QStringLiteral("EventTapManager.start: requested Input Monitoring access. granted=") +
        (granted ? QStringLiteral("true") : QStringLiteral("false")));
}

void EventTapManager::attemptInstall() {
    if (!handler_) {
        return;
    }
    if (!api_.preflightListenEventAccess()) {
        requestListenEventAccessIfNeeded();
    }
    api_.systemLog(QStringLiteral("EventTapManager.start: creating event tap"));
    hasRunLoopSource_ = false; // a replaced tap takes its source with it
    eventTap_ = api_.createTap(eventMask(), handler_);
    if (!eventTap_) {
        scheduleRetryIfNeeded();
        return;
    }
    stopRetry();
    installRunLoopSource();
}

void EventTapManager::installRunLoopSource() {
    if (!eventTap_) {
        return;
    }
    if (!api_.startDelivery(*eventTap_)) {
        api_.systemLog(QStringLiteral("EventTapManager.start: failed to create run loop source"));
        return;
    }
    hasRunLoopSource_ = true;
    api_.systemLog(
        QStringLiteral("EventTapManager.start: event tap installed on current run loop"));
    api_.enableTap(*eventTap_);
    isTapInstalled_ = true;
    notifications_.post(notifications::kEventTapInstalled);
}

void EventTapManager::scheduleRetryIfNeeded() {
    if (retryTimer_) {
        return;
    }
    api_.systemLog(
        QStringLiteral("EventTapManager.start: waiting for permissions / event tap availability"));
    std::weak_ptr<EventTapManager*> weak = self_;
    retryTimer_ = scheduler_.repeatEvery(retryIntervalSeconds_, [weak] {
        if (const auto self = weak.lock()) {
            (*self)->attemptInstall();
        }
    });
    // The running timer keeps its interval; a timer made later without stopRetry ticks every 5 s.
    if (retryIntervalSeconds_ <= 5.0) {
        retryIntervalSeconds_ = 5.0;
    }
}

} // namespace paneforge
