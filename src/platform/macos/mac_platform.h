#pragma once

#include "app/ports/platform.h"
#include "platform/macos/accessibility_service.h"
#include "platform/macos/mac_accessibility_api.h"
#include "platform/macos/mac_display_api.h"
#include "platform/macos/mac_display_service.h"
#include "platform/macos/mac_event_tap_api.h"
#include "platform/macos/mac_hotkey_api.h"
#include "platform/macos/mac_keyboard_layout.h"
#include "platform/macos/mac_permission_source.h"
#include "platform/macos/mac_shell_services.h"
#include "platform/unix/termination_signals.h"

namespace paneforge {

// Paneforge's own windows on macOS.
class MacNativeWindows final : public NativeWindows {
public:
    void configureOverlayWindow(NativeWindowId window) override;
    void configureEditorWindow(NativeWindowId window) override;
    void activate(NativeWindowId window) override;
    // The window server always composites.
    bool compositingAvailable() override { return true; }
};

// The macOS services: accessibility, Core Graphics displays and event taps, Carbon hot keys,
// login items, the updater and the Finder.
class MacPlatform final : public Platform {
public:
    explicit MacPlatform(const PlatformContext& context);

    WindowService& windows() override { return accessibility_; }
    DisplayService& displays() override { return displays_; }
    DisplayFrameService& displayFrames() override { return displays_; }
    ScreenListing& screens() override { return displays_; }
    EventTapApi& eventTaps() override { return eventTaps_; }
    HotkeyApi& hotkeys() override { return hotkeys_; }
    KeyboardLayoutProvider& keyboardLayout() override { return keyboardLayout_; }
    KeyboardKeyTranslator& keyTranslator() override { return keyTranslator_; }
    NativeWindows& nativeWindows() override { return nativeWindows_; }
    LoginItemService& loginItems() override { return loginItems_; }
    UpdateService& updater() override { return updater_; }
    FileRevealer& fileRevealer() override { return fileRevealer_; }
    PermissionSource& permissions() override { return permissions_; }
    // An accessory application: no Dock icon, no main menu, never ended by the system to
    // reclaim memory (sudden and automatic termination off).
    void becomeMenuBarAgent() override;
    void quitOnTerminationSignals(std::function<void()> quit) override;

private:
    MacAccessibilityApi accessibilityApi_;
    AccessibilityService accessibility_;
    MacDisplayApi displayApi_;
    MacDisplayService displays_;
    MacEventTapApi eventTaps_;
    MacHotkeyApi hotkeys_;
    MacKeyboardLayoutProvider keyboardLayout_;
    MacKeyTranslator keyTranslator_;
    MacNativeWindows nativeWindows_;
    MacLoginItem loginItems_;
    SparkleUpdateService updater_;
    FinderFileRevealer fileRevealer_;
    MacPermissionSource permissions_;
    TerminationSignals terminationSignals_;
};

} // namespace paneforge
