#pragma once

#include <QString>

namespace paneforge {

// The system's record of whether Paneforge starts when the user logs in.
enum class LoginItemStatus {
    NotRegistered,
    Enabled,
    // Registered, but the user has yet to allow it in the system settings (macOS).
    RequiresApproval,
    NotFound,
};

// Enabled and awaiting approval both count as registered: registering again would not help.
inline bool isRegistered(LoginItemStatus status) {
    return status == LoginItemStatus::Enabled || status == LoginItemStatus::RequiresApproval;
}

// Starting Paneforge at login: a login item of the application bundle on macOS, an XDG autostart
// entry on Linux.
class LoginItemService {
public:
    virtual ~LoginItemService() = default;
    // Whether this copy may touch the login items at all: only an installed Paneforge (an
    // application bundle on macOS, an installed executable on Linux), never a build run from a
    // source tree, which would otherwise start at every login from wherever it was built.
    virtual bool appliesToThisCopy() = 0;
    virtual LoginItemStatus status() = 0;
    // Each returns whether the system accepted the change.
    virtual bool registerItem() = 0;
    virtual bool unregisterItem() = 0;
};

// Paneforge's own updater, where it has one.
class UpdateService {
public:
    virtual ~UpdateService() = default;
    // Starts the scheduled checks, if this copy can update itself.
    virtual void start() = 0;
    // Checks now, with the updater's own interface. False when there is no updater to ask.
    virtual bool checkForUpdates() = 0;
    // Why there is none, in words for the user.
    virtual QString unavailableMessage() const = 0;
};

// Shows a file in the desktop's file manager.
class FileRevealer {
public:
    virtual ~FileRevealer() = default;
    virtual void reveal(const QString& path) = 0;
};

} // namespace paneforge
