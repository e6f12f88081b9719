#pragma once

#include "app/ports/platform.h"
#include "core/policies/update_policy.h"
#include "platform/unix/termination_signals.h"
#include "platform/x11/dbus_file_revealer.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_event_tap_api.h"
#include "platform/x11/x11_hotkey_api.h"
#include "platform/x11/x11_permission_source.h"
#include "platform/x11/x11_window_service.h"
#include "platform/x11/xdg_autostart.h"
#include "platform/x11/xkb_keyboard_layout.h"

namespace paneforge {

// Paneforge's own windows on X11.
class X11NativeWindows final : public NativeWindows {
public:
    explicit X11NativeWindows(X11Connection& connection)
        : connection_(connection) {}

    // The overlay bypasses the window manager (Qt makes it override-redirect); nothing to add.
    void configureOverlayWindow(NativeWindowId) override {}
    // Asks the window manager to activate the window as a pager would (source indication 2):
    // window managers refuse focus stealing from applications, not from the user's tools.
    void activate(NativeWindowId window) override;
    bool compositingAvailable() override;

private:
    X11Connection& connection_;
};

// Linux distributions update Paneforge through their package manager; there is no updater of its
// own to start or ask.
class PackageManagerUpdates final : public UpdateService {
public:
    void start() override {}
    bool checkForUpdates() override { return false; }
    QString unavailableMessage() const override { return UpdateMenuCopy::packageManagerMessage; }
};

// The X11 services, each over its own XCB connection, read from Qt's event loop.
class X11Platform final : public Platform {
public:
    explicit X11Platform(const PlatformContext& context);

    bool isAvailable() const { return connection_.isValid(); }

    WindowService& windows() override { return windows_; }
    DisplayService& displays() override { return displays_; }
    DisplayFrameService& displayFrames() override { return displays_; }
    ScreenListing& screens() override { return displays_; }
    EventTapApi& eventTaps() override { return eventTaps_; }
    HotkeyApi& hotkeys() override { return hotkeys_; }
    KeyboardLayoutProvider& keyboardLayout() override { return keyboardLayout_; }
    KeyboardKeyTranslator& keyTranslator() override { return keyTranslator_; }
    NativeWindows& nativeWindows() override { return nativeWindows_; }
    LoginItemService& loginItems() override { return loginItems_; }
    UpdateService& updater() override { return updates_; }
    FileRevealer& fileRevealer() override { return fileRevealer_; }
    PermissionSource& permissions() override { return permissions_; }
    // A tray agent has no Dock or main menu to leave, and nothing ends it behind its back.
    void becomeMenuBarAgent() override {}
    void quitOnTerminationSignals(std::function<void()> quit) override;

private:
    X11Connection connection_;
    X11DisplayServices displays_;
    X11WindowService windows_;
    X11EventTapApi eventTaps_;
    X11HotkeyApi hotkeys_;
    XkbKeyboardLayoutProvider keyboardLayout_;
    XkbKeyTranslator keyTranslator_;
    X11NativeWindows nativeWindows_;
    XdgAutostartLoginItem loginItems_;
    PackageManagerUpdates updates_;
    DBusFileRevealer fileRevealer_;
    X11PermissionSource permissions_{connection_};
    TerminationSignals terminationSignals_;
};

} // namespace paneforge
