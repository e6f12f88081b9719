#pragma once

#include "app/switching/layout_cycle_controller.h"

#include <optional>

namespace paneforge {

// The "Switch Layout…" hot key and menu row: the selector on the display under the pointer, one
// card per layout of that display; the picked layout becomes the display's active one and is
// saved.
class LayoutSelectorController {
public:
    explicit LayoutSelectorController(LayoutSwitchServices services);
    ~LayoutSelectorController();

    void showForPointerDisplay();
    void show(DisplayId displayId);
    // Makes `gridId` the active layout of the display the selector opened on, and saves it.
    void savePick(const QString& gridId);
    void dismiss();
    bool isShowing() const { return window_ != nullptr; }

private:
    LayoutSwitchServices services_;
    DisplayLayoutService layouts_;
    // The configuration and display the selector opened with.
    std::optional<PaneforgeConfig> config_;
    QString stableId_;
    std::unique_ptr<LayoutSwitchWindow> window_;
    WeakGuard<LayoutSelectorController> guard_{this};
};

} // namespace paneforge
