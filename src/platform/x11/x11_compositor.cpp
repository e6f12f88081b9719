#include "platform/x11/x11_compositor.h"

#include <cstdlib>
#include <memory>

namespace paneforge {

bool hasCompositingManager(X11Connection& connection) {
    if (!connection.isValid()) {
        return false;
    }
    const QByteArray selection = "_NET_WM_CM_S" + QByteArray::number(connection.screenNumber());
    xcb_connection_t* c = connection.raw();
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> reply(
        xcb_get_selection_owner_reply(
            c, xcb_get_selection_owner(c, connection.atom(selection.constData())), nullptr),
        &std::free);
    return reply && reply->owner != XCB_NONE;
}

} // namespace paneforge
