#include "core/layouts/layout_preset.h"

#include "core/config/name_table.h"

#include <array>

namespace paneforge {

namespace {
constexpr std::array kAllIds = {LayoutPresetId::Columns2, LayoutPresetId::Rows2,
                                LayoutPresetId::Grid2x2, LayoutPresetId::LeftThird,
                                LayoutPresetId::Columns3};
constexpr auto kIdNames = nameTable<LayoutPresetId>({{LayoutPresetId::Columns2, "columns2"},
                                                     {LayoutPresetId::Rows2, "rows2"},
                                                     {LayoutPresetId::Grid2x2, "grid2x2"},
                                                     {LayoutPresetId::LeftThird, "leftThird"},
                                                     {LayoutPresetId::Columns3, "columns3"}});
} // namespace

QString rawValue(LayoutPresetId id) {
    return kIdNames.nameOf(id);
}

std::optional<LayoutPresetId> layoutPresetIdFromRawValue(const QString& raw) {
    return kIdNames.valueOf(raw);
}

LayoutPreset LayoutPresetCatalog::preset(LayoutPresetId id) {
    constexpr double third = 1.0 / 3.0;
    constexpr double twoThirds = 2.0 / 3.0;
    switch (id) {
    case LayoutPresetId::Columns2:
        return {id, QStringLiteral("Two columns"), {0.5}, {}};
    case LayoutPresetId::Rows2:
        return {id, QStringLiteral("Two rows"), {}, {0.5}};
    case LayoutPresetId::Grid2x2:
        return {id, QStringLiteral("2\u00D72"), {0.5}, {0.5}};
    case LayoutPresetId::LeftThird:
        return {id, QStringLiteral("Left third"), {third}, {}};
    case LayoutPresetId::Columns3:
        return {id, QStringLiteral("Three columns"), {third, twoThirds}, {}};
    }
    return {id, QString(), {}, {}};
}

std::vector<LayoutPreset> LayoutPresetCatalog::all() {
    std::vector<LayoutPreset> presets;
    for (const auto id : kAllIds) {
        presets.push_back(preset(id));
    }
    return presets;
}

GridDefinition LayoutPresetApplier::applied(const GridDefinition& grid,
                                            const LayoutPreset& preset) {
    return grid.withSplits(preset.verticalSplits, preset.horizontalSplits);
}

} // namespace paneforge
