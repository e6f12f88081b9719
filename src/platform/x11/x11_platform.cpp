#include "platform/x11/x11_platform.h"

#include "platform/x11/x11_compositor.h"
#include "platform/x11/xcb_client.h"

#include <QtGlobal>

namespace paneforge {

void X11NativeWindows::activate(NativeWindowId window) {
    const auto xWindow = static_cast<xcb_window_t>(window);
    // _NET_ACTIVE_WINDOW: source indication, timestamp (none), the requestor's active window.
    connection_.sendRootMessage(xWindow, "_NET_ACTIVE_WINDOW", {2, XCB_CURRENT_TIME, 0, 0, 0});
    connection_.flush();
}

bool X11NativeWindows::compositingAvailable() {
    return hasCompositingManager(connection_);
}

X11Platform::X11Platform(const PlatformContext& context)
    : displays_(connection_)
    , windows_(connection_, context.scheduler, context.fileLog)
    , nativeWindows_(connection_)
    , loginItems_(XdgAutostartLoginItem::forThisProcess()) {}

void X11Platform::quitOnTerminationSignals(std::function<void()> quit) {
    terminationSignals_.quitOn(std::move(quit));
}

std::optional<QString> prepareAgentProcess() {
    // The native layer speaks X11, so Qt must too (also under XWayland).
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        return std::nullopt;
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        return QStringLiteral("no X11 display to run on (DISPLAY is not set). Start Paneforge in "
                              "an X11 desktop session, or see --help for the commands that need "
                              "none.");
    }
    // Qt ends the process when it cannot reach the display; ask first and say why instead.
    if (!XcbClient(nullptr).isValid()) {
        return QStringLiteral("cannot connect to the X11 display %1. Is the X server running, and "
                              "may this user connect to it?")
            .arg(qEnvironmentVariable("DISPLAY"));
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    return std::nullopt;
}

std::unique_ptr<Platform> makePlatform(const PlatformContext& context) {
    auto platform = std::make_unique<X11Platform>(context);
    if (!platform->isAvailable()) {
        return nullptr;
    }
    return platform;
}

} // namespace paneforge
