#include "platform/macos/mac_event_tap_api.h"

#include "platform/macos/cf_ref.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>

namespace paneforge {

namespace {

// What the tap's callback reaches through its user info; owned by the tap.
struct TapContext {
    InputEventHandler handler;
};

// A CGEventTapCallBack (CoreGraphics/CGEventTypes.h). Listen-only: the event always goes on
// unchanged. The disabled-tap notifications arrive here too, with their own type values.
CGEventRef tapCallback(CGEventTapProxy, CGEventType type, CGEventRef event, void* userInfo) {
    const auto* context = static_cast<const TapContext*>(userInfo);
    if (!context || !context->handler) {
        return event;
    }
    // CGEvent.h: the location relative to the lower-left corner of the main display, which is
    // Cocoa space; both getters answer zero for an event that is no valid CGEventRef.
    const CGPoint location = CGEventGetUnflippedLocation(event);
    // NSEvent.h: NSEventModifierFlagDeviceIndependentFlagsMask; CGEventFlags uses the same bits.
    const auto flags = static_cast<std::uint32_t>(CGEventGetFlags(event) &
                                                  NSEventModifierFlagDeviceIndependentFlagsMask);
    // A disabled-tap notification makes the receiver re-arm, which drops this tap and its
    // context while the handler runs: call a copy.
    const InputEventHandler handler = context->handler;
    handler(
        InputEvent{static_cast<std::uint32_t>(type), DesktopPoint{location.x, location.y}, flags});
    return event;
}

class MacEventTap final : public EventTapHandle {
public:
    MacEventTap(CFRef<CFMachPortRef> port, std::unique_ptr<TapContext> context)
        : port_(std::move(port))
        , context_(std::move(context)) {}
    ~MacEventTap() override {
        removeSource();
        // CGEvent.h: releasing the port releases the tap; invalidating first stops callbacks.
        CFMachPortInvalidate(port_.get());
    }
    MacEventTap(const MacEventTap&) = delete;
    MacEventTap& operator=(const MacEventTap&) = delete;

    CFMachPortRef port() const { return port_.get(); }

    bool addSource() {
        if (!source_) {
            source_ = CFRef<CFRunLoopSourceRef>(
                CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port_.get(), 0));
            if (!source_) {
                return false;
            }
            CFRunLoopAddSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
        }
        return true;
    }

    void removeSource() {
        if (source_) {
            CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
            source_.reset();
        }
    }

private:
    CFRef<CFMachPortRef> port_;
    std::unique_ptr<TapContext> context_;
    CFRef<CFRunLoopSourceRef> source_;
};

MacEventTap* macTap(EventTapHandle& tap) {
    return dynamic_cast<MacEventTap*>(&tap);
}

} // namespace

MacEventTapApi::MacEventTapApi()
    : logger_(LoggerFactory::makeLogger(QStringLiteral("EventTapManager"))) {}

bool MacEventTapApi::preflightListenEventAccess() {
    return CGPreflightListenEventAccess();
}

bool MacEventTapApi::requestListenEventAccess() {
    return CGRequestListenEventAccess();
}

std::unique_ptr<EventTapHandle> MacEventTapApi::createTap(std::uint64_t mask,
                                                          InputEventHandler handler) {
    auto context = std::make_unique<TapContext>(TapContext{std::move(handler)});
    // CGEvent.h: CGEventTapCreate(location, placement, options, mask, callback, userInfo);
    // none without the permission.
    CFRef<CFMachPortRef> port(
        CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionListenOnly,
                         static_cast<CGEventMask>(mask), &tapCallback, context.get()));
    if (!port) {
        return nullptr;
    }
    return std::make_unique<MacEventTap>(std::move(port), std::move(context));
}

bool MacEventTapApi::startDelivery(EventTapHandle& tap) {
    auto* mac = macTap(tap);
    return mac && mac->addSource();
}

void MacEventTapApi::stopDelivery(EventTapHandle& tap) {
    if (auto* mac = macTap(tap)) {
        mac->removeSource();
    }
}

void MacEventTapApi::enableTap(EventTapHandle& tap) {
    if (auto* mac = macTap(tap)) {
        CGEventTapEnable(mac->port(), true);
    }
}

void MacEventTapApi::systemLog(const QString& message) {
    logger_.info(message);
}

} // namespace paneforge
