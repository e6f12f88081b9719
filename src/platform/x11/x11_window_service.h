#pragma once

#include "app/ports/window_service.h"
#include "app/runtime/scheduler.h"
#include "platform/x11/x11_connection.h"

#include <QPoint>
#include <functional>

namespace paneforge {

// Other applications' windows through EWMH. A window is the client window (the one carrying
// WM_STATE); its frame is the outer frame the window manager draws around it.
class X11WindowService final : public WindowService {
public:
    using LogSink = std::function<void(const QString&)>;

    // `scheduler` runs the check of where a moved window really went, once the window manager
    // has had a moment to act (the service must outlive that work: the agent keeps it for the
    // life of the process); `log` receives the diagnostic lines.
    X11WindowService(X11Connection& connection, Scheduler& scheduler, LogSink log);

    // Nothing on X11 needs a permission.
    bool isTrusted() override { return true; }
    void requestTrustPrompt() override {}

    WindowRef windowUnderPoint(DesktopPoint point) override;
    WindowRef focusedWindow() override;
    std::optional<DesktopRect> frame(const WindowRef& window) override;
    std::optional<QString> role(const WindowRef& window) override;
    void setFrame(const WindowRef& window, const DesktopRect& frame) override;
    QString describeWindow(const WindowRef& window) override;
    bool sameWindow(const WindowRef& a, const WindowRef& b) override;

    static xcb_window_t clientOf(const WindowRef& window);
    static WindowRef wrap(xcb_window_t client);

    // How long after a move its result is checked, in seconds.
    static constexpr double verifyDelay = 0.05;

private:
    struct Extents {
        int left = 0, right = 0, top = 0, bottom = 0;
    };
    Extents frameExtents(xcb_window_t client);
    std::optional<xcb_window_t> managedClientAt(xcb_window_t topLevel, int rootX, int rootY);
    std::optional<xcb_window_t> findClientBelow(xcb_window_t window, int depth);
    void unmaximize(xcb_window_t client);
    void requestOuterFrame(xcb_window_t client, int x, int y, int clientWidth, int clientHeight,
                           bool positionOnly);
    void verify(const WindowRef& window, const DesktopRect& requested, QPoint rootOrigin);

    X11Connection& x_;
    Scheduler& scheduler_;
    LogSink log_;
};

} // namespace paneforge
