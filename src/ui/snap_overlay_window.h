#pragma once

#include "app/ports/snap_overlay.h"
#include "ui/snap_overlay_view.h"

#include <QRectF>
#include <functional>
#include <memory>

namespace paneforge {

// What the overlay needs to know about the platform it runs on.
struct SnapOverlayEnvironment {
    // The primary screen's geometry in Qt's global coordinates, read afresh for each window.
    std::function<QRectF()> primaryScreenGeometry;
    // Whether translucent windows are composited. Without it transparent pixels show black, so
    // the window is shaped to the outlines and the chosen zones instead. Unset means yes.
    std::function<bool()> translucencyAvailable;
    // Native touches once the platform window exists (window level, spaces); may be unset.
    std::function<void(QWidget&)> configureNativeWindow;
};

// The overlay window for one visible frame: frameless, above other windows, click-through,
// never activating, translucent, bypassing the window manager (a managed window would be
// reparented into a frame that swallows the clicks). The view is its only content.
class SnapOverlayWindow final : public SnapOverlay {
public:
    SnapOverlayWindow(const DesktopRect& visibleFrame, SnapOverlayEnvironment environment);
    ~SnapOverlayWindow() override;
    SnapOverlayWindow(const SnapOverlayWindow&) = delete;
    SnapOverlayWindow& operator=(const SnapOverlayWindow&) = delete;

    DesktopRect frame() const override { return frame_; }
    void orderFront() override;
    void orderOut() override;
    void update(const std::optional<GridDefinition>& grid, const QList<DesktopRect>& cellFrames,
                const QList<DesktopRect>& selectionFrames) override;

    SnapOverlayView& overlayView() { return *overlayView_; }
    bool isShaped() const { return shaped_; }
    const std::optional<GridDefinition>& grid() const { return grid_; }

private:
    DesktopRect frame_;
    SnapOverlayEnvironment environment_;
    QRectF primaryScreenGeometry_;
    bool shaped_ = false;
    std::optional<GridDefinition> grid_;
    std::unique_ptr<SnapOverlayView> overlayView_;
};

class QtSnapOverlayFactory final : public SnapOverlayFactory {
public:
    explicit QtSnapOverlayFactory(SnapOverlayEnvironment environment)
        : environment_(std::move(environment)) {}
    std::unique_ptr<SnapOverlay> makeOverlay(const DesktopRect& visibleFrame) override {
        return std::make_unique<SnapOverlayWindow>(visibleFrame, environment_);
    }

private:
    SnapOverlayEnvironment environment_;
};

} // namespace paneforge
