#pragma once

namespace paneforge {

struct LaunchAtLoginSyncResult {
    bool shouldUpdatePreference = false;
    bool updatedValue = false;

    friend bool operator==(const LaunchAtLoginSyncResult&,
                           const LaunchAtLoginSyncResult&) = default;
};

// At start the system's login-item state wins over the stored preference: a user who removed the
// login item in the system settings sees the preference switched off.
namespace LaunchAtLoginSyncHelper {
inline LaunchAtLoginSyncResult computeSync(bool storedValue, bool systemValue) {
    return {storedValue != systemValue, systemValue};
}
} // namespace LaunchAtLoginSyncHelper

} // namespace paneforge
