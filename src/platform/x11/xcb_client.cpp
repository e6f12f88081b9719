#include "platform/x11/xcb_client.h"

namespace paneforge {

XcbClient::XcbClient(const char* displayName) {
    int screenNumber = 0;
    // xcb_connect always returns a connection object; a failed one must still be disconnected.
    connection_.reset(xcb_connect(displayName, &screenNumber));
    if (xcb_connection_has_error(connection_.get())) {
        connection_.reset();
        return;
    }
    screenNumber_ = screenNumber;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i) {
        xcb_screen_next(&screens);
    }
    screen_ = screens.rem > 0 ? screens.data : nullptr;
}

} // namespace paneforge
