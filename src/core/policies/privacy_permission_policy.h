#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace paneforge {

enum class PrivacyTccService { Accessibility, ListenEvent };
QString rawValue(PrivacyTccService service); // "Accessibility", "ListenEvent"

enum class PrivacyCoachStep { Accessibility, ListenEvent, Ready };

// The decisions of the permission gate; the platform side only carries them out.
namespace PrivacyPermissionPolicy {
inline const QString tccutilPath = QStringLiteral("/usr/bin/tccutil");
inline const QString bundleId = QStringLiteral("app.paneforge.Paneforge");
inline const QString accessibilitySettingsURL =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
inline const QString listenEventSettingsURL =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_ListenEvent");

bool shouldClearStaleGrant(PrivacyTccService service, bool isCurrentProcessTrusted);
QStringList tccutilProcessArguments(PrivacyTccService service, const QString& bundleId);
PrivacyCoachStep currentStep(bool isAccessibilityTrusted, bool isListenEventGranted);
PrivacyCoachStep step(bool needsAccessibility, bool needsListenEvent);
bool shouldPresentCoach(bool isAccessibilityTrusted, bool isListenEventGranted);
bool shouldDismissCoach(bool isAccessibilityTrusted, bool isListenEventGranted);
QString settingsURLString(PrivacyCoachStep step);
QString settingsURLString(bool needsAccessibility, bool needsListenEvent);

QString coachTitle(PrivacyCoachStep step);
QString coachButtonTitle(PrivacyCoachStep step);
QString coachMessage(PrivacyCoachStep step);
} // namespace PrivacyPermissionPolicy

// Runs a program to its end and gives its exit status; a program that cannot start fails.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;
    virtual int run(const QString& executable, const QStringList& arguments) = 0;
};

// Resets this application's own entry of one privacy service, to clear a stale switch left by an
// earlier copy of the application.
class TccResetService {
public:
    explicit TccResetService(CommandRunner& runner,
                             QString bundleId = PrivacyPermissionPolicy::bundleId)
        : runner_(runner)
        , bundleId_(std::move(bundleId)) {}

    // Nothing when the permission is in effect (false); else the reset's success.
    bool resetStaleGrantIfNeeded(PrivacyTccService service, bool isTrusted);
    bool runReset(PrivacyTccService service);

private:
    CommandRunner& runner_;
    QString bundleId_;
};

} // namespace paneforge
