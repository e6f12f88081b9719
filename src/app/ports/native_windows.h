#pragma once

#include <QtGlobal>

namespace paneforge {

// The platform's handle of one of Paneforge's own windows (Qt's WId).
using NativeWindowId = quintptr;

// What Paneforge's own windows need from the window system beyond what Qt offers.
class NativeWindows {
public:
    virtual ~NativeWindows() = default;

    // The snap overlay: above everything, on every space and beside full-screen windows, never
    // taking the keyboard.
    virtual void configureOverlayWindow(NativeWindowId window) = 0;
    // The zone editor: above other windows, on every space and beside full-screen windows, but
    // taking the mouse and the keyboard. Nothing to add where the toolkit's stays-on-top hint
    // does all that (X11).
    virtual void configureEditorWindow(NativeWindowId) {}
    // A window that must come to the front and take the keyboard at once (editor, selector,
    // preferences), even though Paneforge is a background agent that the user never clicked.
    virtual void activate(NativeWindowId window) = 0;
    // Whether translucent windows are composited; without it transparent pixels show black.
    virtual bool compositingAvailable() = 0;
};

} // namespace paneforge
