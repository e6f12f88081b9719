#pragma once

#include "app/ports/onboarding_views.h"
#include "app/runtime/notification_center.h"
#include "core/policies/privacy_permission_policy.h"

#include <functional>

namespace paneforge {

// What the permission gate needs from the platform besides the window service's trust query and
// the event tap: the privacy system's own parts, and the coach's words for the platform.
class PermissionSource {
public:
    virtual ~PermissionSource() = default;

    // Whether the system keeps per-application privacy grants that the user switches on in its
    // settings (macOS). Only then are stale grants reset, access requested and the settings
    // opened; elsewhere nothing the user can switch on is missing, and the coach only explains.
    virtual bool hasPrivacyGrants() const = 0;
    // Asks the system for input-monitoring access; whether it is granted now.
    virtual bool requestListenEventAccess() = 0;
    virtual void openSettings(const QString& url) = 0;
    // Calls `callback` each time Paneforge becomes the active application, while the token lives.
    [[nodiscard]] virtual NotificationCenter::ObservationToken
    observeActivation(std::function<void()> callback) = 0;
    // The coach's title, message and button for a step that is not ready.
    virtual PermissionCoachContent coachContent(PrivacyCoachStep step) = 0;
};

} // namespace paneforge
