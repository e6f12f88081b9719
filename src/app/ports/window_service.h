#pragma once

#include "core/geometry/desktop_geometry.h"

#include <QString>
#include <memory>
#include <optional>

namespace paneforge {

// Another application's window, as the platform layer knows it. Opaque to the controllers: they
// hold it, hand it back and compare it with sameWindow().
class WindowElement {
public:
    virtual ~WindowElement() = default;
};
using WindowRef = std::shared_ptr<const WindowElement>;

// What controllers need from the desktop's windows. Frames are in desktop space (bottom-left
// origin of the primary display, y up). Reads never throw: a failed read is no value.
class WindowService {
public:
    virtual ~WindowService() = default;

    // Whether Paneforge may move other applications' windows, and asking the user for it.
    virtual bool isTrusted() = 0;
    virtual void requestTrustPrompt() = 0;

    virtual WindowRef windowUnderPoint(DesktopPoint point) = 0;
    virtual WindowRef focusedWindow() = 0;
    virtual std::optional<DesktopRect> frame(const WindowRef& window) = 0;
    // A standard window a user arranges: not a panel, dock, desktop, menu or the like. Each
    // platform decides from what it knows; an unreadable window is not one.
    virtual bool isStandardWindow(const WindowRef& window) = 0;
    // Moves and resizes the window's outer frame; the outcome is only logged.
    virtual void setFrame(const WindowRef& window, const DesktopRect& frame) = 0;
    // "pid=... role=... subrole=... title=... cocoaFrame=..." for the log.
    virtual QString describeWindow(const WindowRef& window) = 0;
    virtual bool sameWindow(const WindowRef& a, const WindowRef& b) = 0;
};

} // namespace paneforge
