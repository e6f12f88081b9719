#pragma once

#include "core/config/config_store.h"
#include "core/layouts/display_identifier.h"
#include "core/layouts/display_layout_service.h"

#include <QStringList>

// Configurations of known shapes for tests and benchmarks.
namespace fixtures {

inline paneforge::PaneforgeConfig configWith(int displayCount, int layoutsPerDisplay) {
    using namespace paneforge;
    DisplayLayoutsMap displays;
    for (int d = 0; d < displayCount; ++d) {
        std::vector<GridDefinition> layouts;
        for (int l = 0; l < layoutsPerDisplay; ++l) {
            layouts.emplace_back(
                QStringLiteral("%1-%2-0000-4000-8000-%3").arg(d).arg(l).arg(d * 1000 + l),
                QStringLiteral("Layout %1").arg(l), std::vector<double>{0.25 + 0.01 * l, 0.6},
                std::vector<double>{0.5});
        }
        const DisplayIdentifier id(1552 + d, 40000 + d,
                                   d % 3 == 0 ? std::nullopt : std::optional<std::int64_t>(d));
        displays.insert_or_assign(id.stableId(), DisplayLayouts(layouts.front().id(), layouts));
    }
    return PaneforgeConfig::makeDefault()
        .copying(displays)
        .withOpenEditorHotkey(HotkeyDefinition{14, 256 | 2048})
        .withNextLayoutHotkey(HotkeyDefinition{124, 256 | 4096});
}

// 3 displays with 5 layouts each: a typical user.
inline paneforge::PaneforgeConfig smallConfig() {
    return configWith(3, 5);
}
// 50 displays with 40 layouts each: far beyond any real desk.
inline paneforge::PaneforgeConfig largeConfig() {
    return configWith(50, 40);
}

// The default configuration with layouts "L0", "L1"... of these names on one display, the first
// active; none: no entry for the display.
inline paneforge::PaneforgeConfig withLayouts(const QString& display, const QStringList& names) {
    using namespace paneforge;
    std::vector<GridDefinition> layouts;
    for (int i = 0; i < names.size(); ++i) {
        layouts.emplace_back(QStringLiteral("L%1").arg(i), names[i], std::vector<double>{0.5},
                             std::vector<double>{});
    }
    DisplayLayoutsMap displays;
    if (!layouts.empty()) {
        displays.insert_or_assign(display, DisplayLayouts(layouts.front().id(), layouts));
    }
    return PaneforgeConfig::makeDefault().copying(displays);
}

// A display's layout names in order, the active one starred: "A *B".
inline QString layoutsOf(const paneforge::PaneforgeConfig& config, const QString& display) {
    const paneforge::DisplayLayoutService service;
    const auto active = service.getActiveLayout(config, display);
    QStringList names;
    for (const auto& layout : service.listLayouts(config, display)) {
        names << (active && active->id() == layout.id() ? QStringLiteral("*") : QString()) +
                     layout.name();
    }
    return names.join(QLatin1Char(' '));
}

} // namespace fixtures
