#include "core/policies/privacy_permission_policy.h"

namespace paneforge {

QString rawValue(PrivacyTccService service) {
    return service == PrivacyTccService::Accessibility ? QStringLiteral("Accessibility")
                                                       : QStringLiteral("ListenEvent");
}

namespace PrivacyPermissionPolicy {

bool shouldClearStaleGrant(PrivacyTccService, bool isCurrentProcessTrusted) {
    return !isCurrentProcessTrusted;
}

QStringList tccutilProcessArguments(PrivacyTccService service, const QString& bundle) {
    return {QStringLiteral("reset"), rawValue(service), bundle};
}

PrivacyCoachStep currentStep(bool isAccessibilityTrusted, bool isListenEventGranted) {
    return step(!isAccessibilityTrusted, !isListenEventGranted);
}

PrivacyCoachStep step(bool needsAccessibility, bool needsListenEvent) {
    if (needsAccessibility) {
        return PrivacyCoachStep::Accessibility;
    }
    return needsListenEvent ? PrivacyCoachStep::ListenEvent : PrivacyCoachStep::Ready;
}

bool shouldPresentCoach(bool isAccessibilityTrusted, bool isListenEventGranted) {
    return !(isAccessibilityTrusted && isListenEventGranted);
}

bool shouldDismissCoach(bool isAccessibilityTrusted, bool isListenEventGranted) {
    return isAccessibilityTrusted && isListenEventGranted;
}

QString settingsURLString(PrivacyCoachStep coachStep) {
    return coachStep == PrivacyCoachStep::ListenEvent ? listenEventSettingsURL
                                                      : accessibilitySettingsURL;
}

QString settingsURLString(bool needsAccessibility, bool needsListenEvent) {
    return settingsURLString(step(needsAccessibility, needsListenEvent));
}

QString coachTitle(PrivacyCoachStep coachStep) {
    return coachStep == PrivacyCoachStep::Ready ? QString() : QStringLiteral("Permissions needed");
}

QString coachButtonTitle(PrivacyCoachStep coachStep) {
    switch (coachStep) {
    case PrivacyCoachStep::Accessibility:
        return QStringLiteral("Open Accessibility");
    case PrivacyCoachStep::ListenEvent:
        return QStringLiteral("Open Input Monitoring");
    case PrivacyCoachStep::Ready:
        break;
    }
    return {};
}

QString coachMessage(PrivacyCoachStep coachStep) {
    switch (coachStep) {
    case PrivacyCoachStep::Accessibility:
        return QStringLiteral(
            "Paneforge cannot move windows yet. System Settings has the switch for "
            "this copy. Open Accessibility and turn this Paneforge on.");
    case PrivacyCoachStep::ListenEvent:
        return QStringLiteral(
            "Paneforge cannot watch mouse drags yet. System Settings has the switch for this copy. "
            "Open Input Monitoring and turn this Paneforge on. If this copy is missing, Click + "
            "and choose Paneforge.app.");
    case PrivacyCoachStep::Ready:
        break;
    }
    return {};
}

} // namespace PrivacyPermissionPolicy

bool TccResetService::resetStaleGrantIfNeeded(PrivacyTccService service, bool isTrusted) {
    if (!PrivacyPermissionPolicy::shouldClearStaleGrant(service, isTrusted)) {
        return false;
    }
    return runReset(service);
}

bool TccResetService::runReset(PrivacyTccService service) {
    return runner_.run(PrivacyPermissionPolicy::tccutilPath,
                       PrivacyPermissionPolicy::tccutilProcessArguments(service, bundleId_)) == 0;
}

} // namespace paneforge
