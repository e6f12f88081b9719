#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/layouts/grid_definition.h"

#include <QList>
#include <memory>
#include <optional>

namespace paneforge {

// One zone overlay window, covering one visible frame for as long as it lives. The snap controller
// creates, feeds, shows and hides it; the overlay makes no decisions of its own. All frames are in
// desktop space.
class SnapOverlay {
public:
    virtual ~SnapOverlay() = default;

    // The visible frame the window was built for.
    virtual DesktopRect frame() const = 0;
    // Shows the window above everything else without taking focus from the dragged application.
    virtual void orderFront() = 0;
    // Hides the window; it is kept for reuse.
    virtual void orderOut() = 0;
    // Every zone outlined, the chosen zones filled. `grid` is kept for reference only.
    virtual void update(const std::optional<GridDefinition>& grid,
                        const QList<DesktopRect>& cellFrames,
                        const QList<DesktopRect>& selectionFrames) = 0;
};

// Builds overlay windows; dropping one closes it.
class SnapOverlayFactory {
public:
    virtual ~SnapOverlayFactory() = default;
    virtual std::unique_ptr<SnapOverlay> makeOverlay(const DesktopRect& visibleFrame) = 0;
};

} // namespace paneforge
