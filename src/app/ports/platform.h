#pragma once

#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "app/ports/display_services.h"
#include "app/ports/native_windows.h"
#include "app/ports/permission_source.h"
#include "app/ports/shell_services.h"
#include "app/ports/window_service.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/screen_diagnostics.h"
#include "core/diagnostics/diagnostic_log.h"
#include "core/input/hotkey_formatter.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace paneforge {

// Every native service of the platform the agent runs on, behind the app layer's ports. One
// implementation per platform (platform/x11, platform/macos), made by makePlatform().
class Platform {
public:
    virtual ~Platform() = default;

    virtual WindowService& windows() = 0;
    virtual DisplayService& displays() = 0;
    virtual DisplayFrameService& displayFrames() = 0;
    virtual ScreenListing& screens() = 0;
    virtual EventTapApi& eventTaps() = 0;
    virtual HotkeyApi& hotkeys() = 0;
    virtual KeyboardLayoutProvider& keyboardLayout() = 0;
    virtual KeyboardKeyTranslator& keyTranslator() = 0;
    virtual NativeWindows& nativeWindows() = 0;
    virtual LoginItemService& loginItems() = 0;
    virtual UpdateService& updater() = 0;
    virtual FileRevealer& fileRevealer() = 0;
    // The privacy permissions snapping needs, for the permission gate.
    virtual PermissionSource& permissions() = 0;

    // Makes the process a background agent once the application object exists: on macOS no Dock
    // icon and no main menu, and the system never ends it on its own to reclaim memory.
    virtual void becomeMenuBarAgent() = 0;

    // Ends the agent in order (log flushed) when the session asks it to: logout, a closed
    // terminal, Ctrl+C, kill.
    virtual void quitOnTerminationSignals(std::function<void()> quit) = 0;
};

struct PlatformContext {
    Scheduler& scheduler;
    DiagnosticLog fileLog;
};

// Each platform layer defines these two, once.
//
// Runs first, before Qt starts: sets up what Qt must know about the window system and answers
// why the agent cannot run here (no X11 display, say), in words for the user.
std::optional<QString> prepareAgentProcess();
// Runs once the application object exists; none when the window system is out of reach.
std::unique_ptr<Platform> makePlatform(const PlatformContext& context);

} // namespace paneforge
