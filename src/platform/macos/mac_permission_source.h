#pragma once

#include "app/ports/permission_source.h"

namespace paneforge {

// The privacy permissions on macOS: the Input Monitoring request (Core Graphics), the System
// Settings deep links (NSWorkspace), the application's activation (NSApplication's notification)
// and the coach's words from the policy.
class MacPermissionSource final : public PermissionSource {
public:
    bool hasPrivacyGrants() const override { return true; }
    bool requestListenEventAccess() override;
    void openSettings(const QString& url) override;
    NotificationCenter::ObservationToken observeActivation(std::function<void()> callback) override;
    PermissionCoachContent coachContent(PrivacyCoachStep step) override;
};

} // namespace paneforge
