#pragma once

#include "app/ports/display_services.h"
#include "app/ports/layout_switch_views.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/weak_guard.h"
#include "core/config/config_store.h"
#include "core/layouts/display_layout_service.h"

#include <functional>
#include <memory>

namespace paneforge {

// What layout switching works with: the settings file, the displays and the windows.
struct LayoutSwitchServices {
    ConfigStore& store;
    DisplayService& displays;
    DisplayFrameService& frames;
    LayoutSwitchViews& views;
    std::function<void(const QString&)> log;
};

// The heads-up display naming the layout just switched to: one at a time, gone one second after
// the last time it was shown, or earlier on Escape or a click.
class LayoutCycleHUDController {
public:
    LayoutCycleHUDController(LayoutSwitchViews& views, Scheduler& scheduler);
    ~LayoutCycleHUDController();

    // Replaces any heads-up display showing and restarts the one-second hide.
    void present(const QString& name, const DesktopRect& visibleFrame);
    void dismiss();
    bool isShowing() const { return window_ != nullptr; }

private:
    LayoutSwitchViews& views_;
    Scheduler& scheduler_;
    std::unique_ptr<LayoutSwitchWindow> window_;
    ScheduledWorkHandle hideWork_;
    WeakGuard<LayoutCycleHUDController> guard_{this};
};

// The next- and previous-layout hot keys and menu rows: the display under the pointer switches
// to its next or previous layout, which is saved and named in the heads-up display.
class LayoutCycleController {
public:
    LayoutCycleController(LayoutSwitchServices services, LayoutCycleHUDController& hud);

    void cycleNext();
    void cyclePrevious();

private:
    void cycle(int delta);

    LayoutSwitchServices services_;
    LayoutCycleHUDController& hud_;
    DisplayLayoutService layouts_;
};

// The configuration in the file, or the default one when it cannot be read.
PaneforgeConfig loadConfigOrDefault(const ConfigStore& store);

} // namespace paneforge
