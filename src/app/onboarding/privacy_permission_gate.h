#pragma once

#include "app/ports/onboarding_views.h"
#include "app/ports/permission_source.h"
#include "app/ports/window_service.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/weak_guard.h"
#include "core/diagnostics/diagnostic_log.h"
#include "core/policies/privacy_permission_policy.h"

#include <functional>
#include <memory>
#include <optional>

namespace paneforge {

struct PrivacyPermissionGateServices {
    // The trust query and prompt for moving other applications' windows.
    WindowService& accessibility;
    PermissionSource& source;
    // Runs the privacy reset tool.
    CommandRunner& commandRunner;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    // Whether the event tap is installed at this moment.
    std::function<bool()> isEventTapInstalled;
    std::function<std::unique_ptr<PermissionCoachView>(std::function<void()> onButton)> makeCoach;
    DiagnosticLog fileLog;
};

// Watches the two permissions snapping needs (moving windows, watching the mouse), coaches the
// user until both work, resets stale grants left by an earlier copy once per missing period, and
// calls onReady once when everything works.
class PrivacyPermissionGate {
public:
    explicit PrivacyPermissionGate(PrivacyPermissionGateServices services);

    void setOnReady(std::function<void()> onReady) { onReady_ = std::move(onReady); }

    // Checks again on activation, on each installation of the tap and every 2 seconds.
    void startWatchdog();
    void handleWatchdogTick();

    static constexpr double watchdogIntervalSeconds = 2.0;

    std::optional<PrivacyCoachStep> presentedStep() const { return presentedStep_; }

private:
    void replaceStaleListenEventIfNeeded();
    void presentCoachIfNeeded(bool trusted);
    void dismissCoach();
    void openSettings();

    PrivacyPermissionGateServices services_;
    TccResetService tccReset_;
    std::unique_ptr<PermissionCoachView> coach_;
    std::optional<PrivacyCoachStep> presentedStep_;
    bool isEventTapInstalled_ = false;
    bool didResetStaleAccessibility_ = false;
    bool didResetStaleListenEvent_ = false;
    ScheduledWorkHandle watchdogTimer_;
    NotificationCenter::ObservationToken activationObserver_;
    NotificationCenter::ObservationToken tapInstalledObserver_;
    std::function<void()> onReady_;
    WeakGuard<PrivacyPermissionGate> guard_{this};
};

} // namespace paneforge
