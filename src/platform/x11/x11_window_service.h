#pragma once

#include "app/ports/window_service.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/weak_guard.h"
#include "core/diagnostics/diagnostic_log.h"
#include "platform/x11/x11_connection.h"

#include <QHash>
#include <QPoint>
#include <functional>
#include <vector>

namespace paneforge {

// Other applications' windows through EWMH. A window is the client window (the one carrying
// WM_STATE); its frame is the outer frame the window manager draws around it. The reads one
// answer needs go to the server together, so that each answer costs one round trip.
class X11WindowService final : public WindowService {
public:
    // `scheduler` runs the check of where a moved window really went, once the window manager
    // has had a moment to act (a check still queued when the service goes does nothing); `log`
    // receives the diagnostic lines.
    X11WindowService(X11Connection& connection, Scheduler& scheduler, DiagnosticLog log);

    // Nothing on X11 needs a permission.
    bool isTrusted() override { return true; }
    void requestTrustPrompt() override {}

    WindowRef windowUnderPoint(DesktopPoint point) override;
    WindowRef focusedWindow() override;
    std::optional<DesktopRect> frame(const WindowRef& window) override;
    // A managed client whose window type (_NET_WM_WINDOW_TYPE) is normal, dialog or utility, or
    // that names none.
    bool isStandardWindow(const WindowRef& window) override;
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
        bool operator==(const Extents&) const = default;
    };
    // The reads that give a client's outer frame, in flight together.
    struct FrameRead;
    // What a frame write needs to know of the window and the desktop.
    struct WriteFacts {
        Extents extents;
        bool maximized = false;
        bool managed = false; // a window manager runs
    };
    static Extents extentsFrom(const std::optional<std::vector<std::uint32_t>>& values);
    WriteFacts writeFacts(xcb_window_t client);
    std::optional<xcb_window_t> managedClientAt(xcb_window_t topLevel, int rootX, int rootY);
    std::optional<xcb_window_t> findClientBelow(xcb_window_t window, int depth);
    void unmaximize(xcb_window_t client);
    void requestOuterFrame(xcb_window_t client, int x, int y, int clientWidth, int clientHeight,
                           bool positionOnly, bool managed);
    void verify(const WindowRef& window, const DesktopRect& requested, QPoint rootOrigin,
                Extents used);
    bool isStandardType(const std::vector<xcb_atom_t>& types);
    QString typeName(xcb_atom_t type);

    X11Connection& x_;
    Scheduler& scheduler_;
    DiagnosticLog log_;
    QHash<xcb_atom_t, QString> typeNames_; // atoms keep their names for the server's life
    // The window types, interned together on first use.
    std::vector<xcb_atom_t> standardTypes_;
    std::vector<xcb_atom_t> otherTypes_;
    WeakGuard<X11WindowService> guard_{this};
};

} // namespace paneforge
