#include "platform/macos/mac_overlay_window.h"

#import <AppKit/AppKit.h>

namespace paneforge {

void configureOverlayNativeWindow(quintptr nativeView) {
    NSView* view = reinterpret_cast<NSView*>(nativeView);
    NSWindow* window = view.window;
    if (window == nil) {
        return;
    }
    // NSWindow.h: level (NSWindowLevel), collectionBehavior (NSWindowCollectionBehavior),
    // hasShadow, ignoresMouseEvents, opaque, backgroundColor.
    window.level = NSFloatingWindowLevel;
    window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                                NSWindowCollectionBehaviorFullScreenAuxiliary; // 0x101
    window.hasShadow = NO;
    window.ignoresMouseEvents = YES;
    window.opaque = NO;
    window.backgroundColor = NSColor.clearColor;
}

void configureEditorNativeWindow(quintptr nativeView) {
    NSView* view = reinterpret_cast<NSView*>(nativeView);
    NSWindow* window = view.window;
    if (window == nil) {
        return;
    }
    // NSWindow.h: level, collectionBehavior, hasShadow, ignoresMouseEvents. A borderless window
    // becomes key only when asked; Qt's frameless window already answers canBecomeKeyWindow.
    window.level = NSFloatingWindowLevel;
    window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                                NSWindowCollectionBehaviorFullScreenAuxiliary; // 0x101
    window.hasShadow = NO;
    window.ignoresMouseEvents = NO;
}

} // namespace paneforge
