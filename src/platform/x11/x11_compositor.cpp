#include "platform/x11/x11_compositor.h"

#include "platform/x11/xcb_client.h"

namespace paneforge {

bool hasCompositingManager(X11Connection& connection) {
    if (!connection.isValid()) {
        return false;
    }
    const QByteArray selection = "_NET_WM_CM_S" + QByteArray::number(connection.screenNumber());
    xcb_connection_t* c = connection.raw();
    const auto reply = owned(xcb_get_selection_owner_reply(
        c, xcb_get_selection_owner(c, connection.atom(selection.constData())), nullptr));
    return reply && reply->owner != XCB_NONE;
}

} // namespace paneforge
