#include "platform/macos/mac_overlay_window.h"

#import <AppKit/AppKit.h>

namespace paneforge {

namespace {

// Above ordinary windows, on every space and beside full-screen applications, without a shadow.
// NSWindow.h: level (NSWindowLevel), collectionBehavior (NSWindowCollectionBehavior), hasShadow.
void floatOnEverySpace(NSWindow* window) {
    window.level = NSFloatingWindowLevel;
    window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                                NSWindowCollectionBehaviorFullScreenAuxiliary; // 0x101
    window.hasShadow = NO;
}

NSWindow* windowOf(quintptr nativeView) {
    return reinterpret_cast<NSView*>(nativeView).window;
}

} // namespace

void configureOverlayNativeWindow(quintptr nativeView) {
    NSWindow* window = windowOf(nativeView);
    if (window == nil) {
        return;
    }
    floatOnEverySpace(window);
    // NSWindow.h: ignoresMouseEvents, opaque, backgroundColor.
    window.ignoresMouseEvents = YES;
    window.opaque = NO;
    window.backgroundColor = NSColor.clearColor;
}

void configureEditorNativeWindow(quintptr nativeView) {
    NSWindow* window = windowOf(nativeView);
    if (window == nil) {
        return;
    }
    // A borderless window becomes key only when asked; Qt's frameless window already answers
    // canBecomeKeyWindow.
    floatOnEverySpace(window);
    window.ignoresMouseEvents = NO;
}

} // namespace paneforge
