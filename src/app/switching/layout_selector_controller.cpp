#include "app/switching/layout_selector_controller.h"

namespace paneforge {

LayoutSelectorController::LayoutSelectorController(LayoutSwitchServices services)
    : services_(std::move(services)) {}

LayoutSelectorController::~LayoutSelectorController() {
    dismiss();
}

void LayoutSelectorController::showForPointerDisplay() {
    if (const auto displayId = services_.frames.getDisplayId(services_.frames.pointerLocation())) {
        show(*displayId);
    }
}

void LayoutSelectorController::show(DisplayId displayId) {
    const auto visibleFrame = services_.frames.getVisibleFrame(displayId);
    if (!visibleFrame) {
        return;
    }
    dismiss();
    stableId_ = services_.displays.getIdentifier(displayId).stableId();
    PaneforgeConfig config = loadConfigOrDefault(services_.store);
    std::vector<GridDefinition> layouts = layouts_.listLayouts(config, stableId_);
    if (layouts.empty()) {
        // A display without layouts gets its first one saved (and active) before it is shown.
        const GridDefinition fallback = layouts_.getOrCreateLayout(config, stableId_);
        try {
            config = layouts_.save(config, stableId_, fallback);
        } catch (const std::exception& error) {
            // A default layout without a usable name cannot be saved for the display.
            services_.log(QStringLiteral("LayoutSelectorController.show failed: ") +
                          QString::fromUtf8(error.what()));
            return;
        }
        try {
            services_.store.saveConfig(config);
        } catch (const std::exception&) {
            // The store logs its own failures; the card is shown all the same.
        }
        layouts = {fallback};
    }
    const auto active = layouts_.getActiveLayout(config, stableId_);
    LayoutSelectorContent content{LayoutSelectorAssembler::items(
                                      layouts, active ? std::optional(active->id()) : std::nullopt),
                                  layouts};
    config_ = config;
    services_.log(QStringLiteral("LayoutSelectorController.show display=%1 layouts=%2")
                      .arg(stableId_)
                      .arg(layouts.size()));
    window_ = services_.views.showSelector(
        *visibleFrame, std::move(content),
        guard_.wrap([](LayoutSelectorController& self, const QString& gridId) {
            self.savePick(gridId);
            self.dismiss();
        }),
        guard_.wrap([](LayoutSelectorController& self) { self.dismiss(); }));
}

void LayoutSelectorController::savePick(const QString& gridId) {
    if (!config_) {
        return;
    }
    try {
        services_.store.saveConfig(layouts_.selectLayout(*config_, stableId_, gridId).first);
        services_.log(QStringLiteral("LayoutSelectorController.pick display=%1 id=%2")
                          .arg(stableId_, gridId));
    } catch (const std::exception& error) {
        services_.log(QStringLiteral("LayoutSelectorController.pick failed: ") +
                      QString::fromUtf8(error.what()));
    }
}

void LayoutSelectorController::dismiss() {
    window_.reset();
    config_.reset();
}

} // namespace paneforge
