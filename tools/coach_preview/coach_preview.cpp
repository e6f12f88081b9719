// paneforge-coach-preview: shows the permission coach as the agent shows it on an X server without
// XInput 2.1, for `make screenshots` (Xvfb always has XInput 2, so the agent never shows it there).
// Quits when the coach is closed.

#include "platform/x11/x11_permission_source.h"
#include "platform/x11/x11_platform.h"
#include "ui/onboarding/permission_coach_window.h"

#include <QApplication>

using namespace paneforge;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    X11Connection connection;
    if (!connection.isValid()) {
        return 1;
    }
    X11NativeWindows nativeWindows(connection);
    PermissionCoachWindow coach(nativeWindows, [&coach] { coach.reject(); });
    QObject::connect(&coach, &QDialog::finished, &app, &QApplication::quit);
    coach.present(X11PermissionSource::coachContentFor(std::nullopt));
    return QApplication::exec();
}
