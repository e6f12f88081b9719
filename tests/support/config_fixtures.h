#pragma once

#include "core/config/config_store.h"
#include "core/layouts/display_identifier.h"

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

} // namespace fixtures
