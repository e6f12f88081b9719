#pragma once

#include "app/ports/permission_source.h"
#include "platform/x11/x11_connection.h"

#include <optional>
#include <utility>

namespace paneforge {

// X11 asks no permission for moving windows or listening to the mouse; what can be missing is
// the X server's part: the XInput 2.1 raw events the event tap is made of. The coach then says
// which, and what to do.
class X11PermissionSource final : public PermissionSource {
public:
    explicit X11PermissionSource(X11Connection& connection)
        : connection_(connection) {}

    bool hasPrivacyGrants() const override { return false; }
    bool requestListenEventAccess() override { return true; }
    void openSettings(const QString&) override {}
    // Nothing to observe: the gate's timer and the tap's installation cover every change.
    NotificationCenter::ObservationToken observeActivation(std::function<void()>) override {
        return nullptr;
    }
    PermissionCoachContent coachContent(PrivacyCoachStep step) override;

    // The server's XInput version, none without the extension.
    std::optional<std::pair<int, int>> xinputVersion();
    // What the coach says on a server with that XInput version: what is missing and what to do.
    static PermissionCoachContent coachContentFor(std::optional<std::pair<int, int>> version);

private:
    X11Connection& connection_;
};

} // namespace paneforge
