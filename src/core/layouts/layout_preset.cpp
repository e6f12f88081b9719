#include "core/layouts/layout_preset.h"

#include <array>

namespace paneforge {

namespace {
constexpr std::array kAllIds = {LayoutPresetId::Columns2, LayoutPresetId::Rows2,
                                LayoutPresetId::Grid2x2, LayoutPresetId::LeftThird,
                                LayoutPresetId::Columns3};
}

QString rawValue(LayoutPresetId id) {
    switch (id) {
    case LayoutPresetId::Columns2:
        return QStringLiteral("columns2");
    case LayoutPresetId::Rows2:
        return QStringLiteral("rows2");
    case LayoutPresetId::Grid2x2:
        return QStringLiteral("grid2x2");
    case LayoutPresetId::LeftThird:
        return QStringLiteral("leftThird");
    case LayoutPresetId::Columns3:
        return QStringLiteral("columns3");
    }
    return {};
}

std::optional<LayoutPresetId> layoutPresetIdFromRawValue(const QString& raw) {
    for (const auto id : kAllIds) {
        if (rawValue(id) == raw) {
            return id;
        }
    }
    return std::nullopt;
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
