#include "platform/macos/mac_platform.h"

#include "platform/macos/mac_overlay_window.h"

#import <AppKit/AppKit.h>

namespace paneforge {

void MacNativeWindows::configureOverlayWindow(NativeWindowId window) {
    configureOverlayNativeWindow(window);
}

void MacNativeWindows::configureEditorWindow(NativeWindowId window) {
    configureEditorNativeWindow(window);
}

void MacNativeWindows::activate(NativeWindowId window) {
    // QWidget::winId() is the widget's NSView.
    NSView* view = reinterpret_cast<NSView*>(window);
    // NSApplication.h: -activate (macOS 14) replaces -activateIgnoringOtherApps:.
    if (@available(macOS 14.0, *)) {
        [NSApp activate];
    } else {
        [NSApp activateIgnoringOtherApps:YES];
    }
    // NSWindow.h: -makeKeyAndOrderFront:.
    [view.window makeKeyAndOrderFront:nil];
}

MacPlatform::MacPlatform(const PlatformContext& context)
    : accessibility_(accessibilityApi_, context.fileLog)
    , displays_(displayApi_, LoggerFactory::makeLogger(QStringLiteral("DisplayService"))) {}

void MacPlatform::becomeMenuBarAgent() {
    // NSApplication.h: -setActivationPolicy: with NSApplicationActivationPolicyAccessory. Qt made
    // the process a regular application while it started; this undoes it.
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
    // NSProcessInfo.h: -disableSuddenTermination, -disableAutomaticTermination:.
    NSProcessInfo* process = NSProcessInfo.processInfo;
    [process disableSuddenTermination];
    [process disableAutomaticTermination:@"Paneforge stays running as a menu bar agent"];
}

void MacPlatform::quitOnTerminationSignals(std::function<void()> quit) {
    terminationSignals_.quitOn(std::move(quit));
}

std::optional<QString> prepareAgentProcess() {
    return std::nullopt;
}

std::unique_ptr<Platform> makePlatform(const PlatformContext& context) {
    return std::make_unique<MacPlatform>(context);
}

} // namespace paneforge
