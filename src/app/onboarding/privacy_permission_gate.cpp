#include "app/onboarding/privacy_permission_gate.h"

#include "core/config/name_table.h"

namespace paneforge {

namespace {
constexpr auto kStepNames =
    nameTable<PrivacyCoachStep>({{PrivacyCoachStep::Accessibility, "accessibility"},
                                 {PrivacyCoachStep::ListenEvent, "listenEvent"},
                                 {PrivacyCoachStep::Ready, "ready"}});
} // namespace

PrivacyPermissionGate::PrivacyPermissionGate(PrivacyPermissionGateServices services)
    : services_(std::move(services))
    , tccReset_(services_.commandRunner) {}

void PrivacyPermissionGate::startWatchdog() {
    const auto tick = guard_.wrap([](PrivacyPermissionGate& self) { self.handleWatchdogTick(); });
    activationObserver_ = services_.source.observeActivation(tick);
    tapInstalledObserver_ =
        services_.notifications.observe(notifications::kEventTapInstalled, tick);
    // Never stopped: once ready, a tick only confirms it.
    watchdogTimer_ = services_.scheduler.repeatEvery(watchdogIntervalSeconds, tick);
}

void PrivacyPermissionGate::handleWatchdogTick() {
    if (services_.isEventTapInstalled()) {
        isEventTapInstalled_ = true;
    }
    const bool trusted = services_.accessibility.isTrusted();
    if (trusted && isEventTapInstalled_) {
        // A permission lost later is a new missing period with its own reset.
        didResetStaleAccessibility_ = false;
        didResetStaleListenEvent_ = false;
        dismissCoach();
        if (onReady_) {
            const auto onReady = std::exchange(onReady_, nullptr);
            onReady();
        }
        return;
    }
    if (!trusted && !didResetStaleAccessibility_ && services_.source.hasPrivacyGrants()) {
        didResetStaleAccessibility_ = true;
        tccReset_.runReset(PrivacyTccService::Accessibility);
        services_.accessibility.requestTrustPrompt();
    }
    replaceStaleListenEventIfNeeded();
    presentCoachIfNeeded(trusted);
}

void PrivacyPermissionGate::replaceStaleListenEventIfNeeded() {
    // The installed state is latched: a tap seen once proves the grant was not stale.
    if (isEventTapInstalled_ || didResetStaleListenEvent_ || !services_.source.hasPrivacyGrants()) {
        return;
    }
    didResetStaleListenEvent_ = true;
    tccReset_.runReset(PrivacyTccService::ListenEvent);
    services_.notifications.post(notifications::kListenEventGrantCleared);
    const bool granted = services_.source.requestListenEventAccess();
    services_.fileLog(QStringLiteral("PrivacyPermissionGate.requestListenEventGrant granted=") +
                      (granted ? QStringLiteral("true") : QStringLiteral("false")));
}

void PrivacyPermissionGate::presentCoachIfNeeded(bool trusted) {
    if (!PrivacyPermissionPolicy::shouldPresentCoach(trusted, isEventTapInstalled_)) {
        return;
    }
    const PrivacyCoachStep step =
        PrivacyPermissionPolicy::currentStep(trusted, isEventTapInstalled_);
    // Without privacy settings there is no switch to wait for: the coach explains once per step,
    // and a coach the user closed stays closed.
    if (!services_.source.hasPrivacyGrants() && presentedStep_ == step) {
        return;
    }
    if (!coach_) {
        coach_ = services_.makeCoach(
            guard_.wrap([](PrivacyPermissionGate& self) { self.openSettings(); }));
    }
    presentedStep_ = step;
    services_.fileLog(QStringLiteral("PrivacyPermissionGate.coach step=") +
                      kStepNames.nameOf(step));
    coach_->present(services_.source.coachContent(step));
}

void PrivacyPermissionGate::dismissCoach() {
    presentedStep_.reset();
    if (coach_ && coach_->isVisible()) {
        coach_->dismiss();
    }
}

void PrivacyPermissionGate::openSettings() {
    if (!services_.source.hasPrivacyGrants()) {
        coach_->dismiss();
        return;
    }
    const bool trusted = services_.accessibility.isTrusted();
    services_.source.openSettings(PrivacyPermissionPolicy::settingsURLString(!trusted, true));
}

} // namespace paneforge
