#include "ui/snap_overlay_window.h"

#include <utility>

namespace paneforge {

SnapOverlayWindow::SnapOverlayWindow(const DesktopRect& visibleFrame,
                                     SnapOverlayEnvironment environment)
    : frame_(visibleFrame)
    , environment_(std::move(environment))
    , primaryScreenGeometry_(
          environment_.primaryScreenGeometry ? environment_.primaryScreenGeometry() : QRectF())
    , shaped_(environment_.translucencyAvailable && !environment_.translucencyAvailable())
    , overlayView_(std::make_unique<SnapOverlayView>()) {
    overlayView_->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                 Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus |
                                 Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint);
    overlayView_->setAttribute(Qt::WA_ShowWithoutActivating);
    overlayView_->setAttribute(Qt::WA_X11DoNotAcceptFocus);
    overlayView_->setWindowTitle(QStringLiteral("Paneforge Zones"));
    overlayView_->setGeometry(
        desktopToGlobal(visibleFrame, primaryScreenGeometry_).toAlignedRect());
    if (shaped_) {
        // Nothing shows until there is something to draw.
        overlayView_->setMask(QRegion(0, 0, 1, 1));
    }
}

SnapOverlayWindow::~SnapOverlayWindow() = default;

void SnapOverlayWindow::orderFront() {
    // Called on every pointer movement of a snap: the native touches are needed only when the
    // window comes back on screen, the raise every time (other windows may have come up).
    const bool wasVisible = overlayView_->isVisible();
    overlayView_->show();
    overlayView_->raise();
    if (!wasVisible && environment_.configureNativeWindow) {
        environment_.configureNativeWindow(*overlayView_);
    }
}

void SnapOverlayWindow::orderOut() {
    overlayView_->hide();
}

void SnapOverlayWindow::update(const std::optional<GridDefinition>& grid,
                               const QList<DesktopRect>& cellFrames,
                               const QList<DesktopRect>& selectionFrames) {
    grid_ = grid;
    const QPointF origin = overlayView_->geometry().topLeft();
    QList<QRectF> outlines;
    outlines.reserve(cellFrames.size());
    for (const DesktopRect& cell : cellFrames) {
        outlines.append(desktopToView(cell, primaryScreenGeometry_, origin));
    }
    QList<QRectF> fills;
    fills.reserve(selectionFrames.size());
    for (const DesktopRect& zone : selectionFrames) {
        fills.append(desktopToView(zone, primaryScreenGeometry_, origin));
    }
    SnapOverlayModel model(std::move(outlines), std::move(fills),
                           QRectF(QPointF(0, 0), overlayView_->size()));
    if (shaped_) {
        const QRegion mask = model.mask();
        // An empty mask would mean no shape at all: a black window.
        overlayView_->setMask(mask.isEmpty() ? QRegion(0, 0, 1, 1) : mask);
    }
    overlayView_->setModel(std::move(model));
}

} // namespace paneforge
