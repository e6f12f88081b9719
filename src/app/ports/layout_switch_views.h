#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/layouts/grid_definition.h"
#include "core/layouts/layout_cycle.h"

#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace paneforge {

// A window of layout switching on screen; dropping it closes it.
class LayoutSwitchWindow {
public:
    virtual ~LayoutSwitchWindow() = default;
};

// What the selector shows: one card per item, with the layout it draws (same order).
struct LayoutSelectorContent {
    std::vector<LayoutSelectorItem> items;
    std::vector<GridDefinition> layouts;
};

// The windows of layout switching, as the controllers see them. Frames are in desktop space.
class LayoutSwitchViews {
public:
    virtual ~LayoutSwitchViews() = default;
    // The heads-up display: `name` centred on `visibleFrame`, in front, without taking the
    // keyboard from the user's application. Escape or a click calls `onDismiss`.
    virtual std::unique_ptr<LayoutSwitchWindow> showHUD(const QString& name,
                                                        const DesktopRect& visibleFrame,
                                                        std::function<void()> onDismiss) = 0;
    // The selector on `visibleFrame`: a dimmed backdrop and the strip of cards, which takes the
    // keyboard at once. Picking a card calls `onSelect` with its layout id; Escape or a click on
    // the backdrop calls `onDismiss`.
    virtual std::unique_ptr<LayoutSwitchWindow>
    showSelector(const DesktopRect& visibleFrame, LayoutSelectorContent content,
                 std::function<void(const QString&)> onSelect, std::function<void()> onDismiss) = 0;
};

} // namespace paneforge
