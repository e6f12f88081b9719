#include "platform/macos/mac_permission_source.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>

namespace paneforge {

namespace {

// One observer of the default notification centre, removed when dropped. Manual reference
// counting, as in the rest of this layer: the token is retained while observed.
class ActivationObservation final : public NotificationCenter::Observation {
public:
    explicit ActivationObservation(std::function<void()> callback) {
        // NSNotification.h: -addObserverForName:object:queue:usingBlock: returns an observer
        // token the caller does not own, hence the retain; NSApplication.h:
        // NSApplicationDidBecomeActiveNotification.
        token_ = [[NSNotificationCenter.defaultCenter
            addObserverForName:NSApplicationDidBecomeActiveNotification
                        object:nil
                         queue:NSOperationQueue.mainQueue
                    usingBlock:^(NSNotification*) {
                      callback();
                    }] retain];
    }
    ~ActivationObservation() override {
        [NSNotificationCenter.defaultCenter removeObserver:token_];
        [token_ release];
    }
    ActivationObservation(const ActivationObservation&) = delete;
    ActivationObservation& operator=(const ActivationObservation&) = delete;

private:
    id<NSObject> token_ = nil;
};

} // namespace

bool MacPermissionSource::requestListenEventAccess() {
    // CGEvent.h: CGRequestListenEventAccess (macOS 10.15) shows the system's request once and
    // answers whether access is granted now.
    return CGRequestListenEventAccess();
}

void MacPermissionSource::openSettings(const QString& url) {
    // NSWorkspace.h: - (BOOL)openURL:(NSURL*)url; System Settings opens the privacy pane the link
    // names. A link it cannot open changes nothing, so the answer is not needed.
    if (NSURL* link = [NSURL URLWithString:url.toNSString()]) {
        [NSWorkspace.sharedWorkspace openURL:link];
    }
}

NotificationCenter::ObservationToken
MacPermissionSource::observeActivation(std::function<void()> callback) {
    return std::make_unique<ActivationObservation>(std::move(callback));
}

PermissionCoachContent MacPermissionSource::coachContent(PrivacyCoachStep step) {
    return {PrivacyPermissionPolicy::coachTitle(step), PrivacyPermissionPolicy::coachMessage(step),
            PrivacyPermissionPolicy::coachButtonTitle(step)};
}

} // namespace paneforge
