#include "app/switching/layout_cycle_controller.h"

namespace paneforge {

PaneforgeConfig loadConfigOrDefault(const ConfigStore& store) {
    try {
        return store.loadConfig();
    } catch (const std::exception&) {
        return PaneforgeConfig::makeDefault();
    }
}

LayoutCycleHUDController::LayoutCycleHUDController(LayoutSwitchViews& views, Scheduler& scheduler)
    : views_(views)
    , scheduler_(scheduler) {}

LayoutCycleHUDController::~LayoutCycleHUDController() {
    dismiss();
}

void LayoutCycleHUDController::present(const QString& name, const DesktopRect& visibleFrame) {
    dismiss();
    window_ = views_.showHUD(name, visibleFrame,
                             guard_.wrap([](LayoutCycleHUDController& self) { self.dismiss(); }));
    hideWork_ =
        scheduler_.postAfter(LayoutCycleHUDPolicy::hideDuration,
                             guard_.wrap([](LayoutCycleHUDController& self) { self.dismiss(); }));
}

void LayoutCycleHUDController::dismiss() {
    if (hideWork_) {
        hideWork_->cancel();
        hideWork_.reset();
    }
    window_.reset();
}

LayoutCycleController::LayoutCycleController(LayoutSwitchServices services,
                                             LayoutCycleHUDController& hud)
    : services_(std::move(services))
    , hud_(hud) {}

void LayoutCycleController::cycleNext() {
    cycle(1);
}

void LayoutCycleController::cyclePrevious() {
    cycle(-1);
}

void LayoutCycleController::cycle(int delta) {
    const QString entry = delta > 0 ? QStringLiteral("LayoutCycleController.cycleNext")
                                    : QStringLiteral("LayoutCycleController.cyclePrevious");
    const auto displayId = services_.frames.getDisplayId(services_.frames.pointerLocation());
    if (!displayId) {
        return;
    }
    const QString stableId = services_.displays.getIdentifier(*displayId).stableId();
    std::optional<PaneforgeConfig> cycled;
    try {
        const PaneforgeConfig config = loadConfigOrDefault(services_.store);
        cycled = delta > 0 ? layouts_.cycleNext(config, stableId)
                           : layouts_.cyclePrevious(config, stableId);
    } catch (const std::exception&) {
        cycled.reset();
    }
    if (!cycled) {
        services_.log(entry + QStringLiteral(" display=") + stableId + QStringLiteral(" none"));
        return;
    }
    try {
        services_.store.saveConfig(*cycled);
    } catch (const std::exception&) {
        // The store logs its own failures; the heads-up display shows the switch all the same.
    }
    const auto active = layouts_.getActiveLayout(*cycled, stableId);
    services_.log(entry + QStringLiteral(" display=") + stableId + QStringLiteral(" active=") +
                  (active ? active->id() : QString()));

    // Shown on the display under the pointer now, which the save may have given time to change.
    const auto hudDisplay = services_.frames.getDisplayId(services_.frames.pointerLocation());
    if (!hudDisplay) {
        return;
    }
    const QString hudStableId = services_.displays.getIdentifier(*hudDisplay).stableId();
    const auto name =
        LayoutCycleHUDPolicy::nameToPresent(layouts_.getActiveLayout(*cycled, hudStableId));
    const auto visibleFrame = services_.frames.getVisibleFrame(*hudDisplay);
    if (name && visibleFrame) {
        hud_.present(*name, *visibleFrame);
    }
}

} // namespace paneforge
