#pragma once

#include "core/layouts/grid_definition.h"

#include <QString>
#include <optional>
#include <vector>

namespace paneforge {

enum class LayoutPresetId { Columns2, Rows2, Grid2x2, LeftThird, Columns3 };

QString rawValue(LayoutPresetId id);
std::optional<LayoutPresetId> layoutPresetIdFromRawValue(const QString& raw);

struct LayoutPreset {
    LayoutPresetId id;
    QString title;
    std::vector<double> verticalSplits;
    std::vector<double> horizontalSplits;

    friend bool operator==(const LayoutPreset&, const LayoutPreset&) = default;
};

// The ready-made split patterns the zone editor offers, in the order it shows them.
namespace LayoutPresetCatalog {
std::vector<LayoutPreset> all();
LayoutPreset preset(LayoutPresetId id);
} // namespace LayoutPresetCatalog

namespace LayoutPresetApplier {
// The layout with its splits replaced by the preset's; id and name are kept.
GridDefinition applied(const GridDefinition& grid, const LayoutPreset& preset);
} // namespace LayoutPresetApplier

} // namespace paneforge
