#include "platform/x11/x11_permission_source.h"

#include <xcb/xinput.h>

namespace paneforge {

std::optional<std::pair<int, int>> X11PermissionSource::xinputVersion() {
    xcb_connection_t* connection = connection_.raw();
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        return std::nullopt;
    }
    const auto version = owned(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version) {
        return std::nullopt;
    }
    return std::pair<int, int>(version->major_version, version->minor_version);
}

PermissionCoachContent X11PermissionSource::coachContent(PrivacyCoachStep) {
    return coachContentFor(xinputVersion());
}

PermissionCoachContent
X11PermissionSource::coachContentFor(std::optional<std::pair<int, int>> version) {
    const QString title = QStringLiteral("Snapping is not available");
    const QString button = QStringLiteral("OK");
    if (!version || *version < std::pair<int, int>(2, 1)) {
        const QString has =
            version ? QStringLiteral("XInput %1.%2").arg(version->first).arg(version->second)
                    : QStringLiteral("no XInput");
        return {title,
                QStringLiteral("Paneforge cannot watch mouse drags: this X server has %1, and "
                               "snapping needs XInput 2.1 or later. Hot keys and the menu work. "
                               "To snap, run Paneforge in an X11 session whose server has "
                               "XInput 2.1 (Xorg 1.12 or later).")
                    .arg(has),
                button};
    }
    return {title,
            QStringLiteral("Paneforge cannot watch mouse drags yet: the X server refused its "
                           "XInput raw events. Hot keys and the menu work. Paneforge keeps "
                           "trying and snaps as soon as the server lets it; the log file (Reveal "
                           "Log File in the menu) says what the server answered."),
            button};
}

} // namespace paneforge
