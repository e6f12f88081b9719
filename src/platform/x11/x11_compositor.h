#pragma once

#include "platform/x11/x11_connection.h"

namespace paneforge {

// Whether a compositing manager runs on the connection's screen: it owns the _NET_WM_CM_S<n>
// selection. Without one, transparent window pixels show black.
bool hasCompositingManager(X11Connection& connection);

} // namespace paneforge
