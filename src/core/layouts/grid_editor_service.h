#pragma once

#include "core/geometry/grid_calculator.h"

#include <optional>

namespace paneforge {

// The split line closest to a point.
struct NearestSplit {
    GridLineOrientation orientation = GridLineOrientation::Horizontal;
    double value = 0.0;    // as stored in the layout
    double distance = 0.0; // along the line's axis
    double epsilon = GridSplitNormalizer::kDefaultEpsilon;

    friend bool operator==(const NearestSplit&, const NearestSplit&) = default;
};

// The zone editor's edits: add a split line, remove the line nearest a click. Every result is a
// new layout with the same id and name and cleaned split lists.
class GridEditorService {
public:
    explicit GridEditorService(GridSplitNormalizer splitNormalizer = GridSplitNormalizer())
        : splitNormalizer_(splitNormalizer) {}

    GridDefinition addHorizontalLine(const GridDefinition& grid, double y) const;
    GridDefinition addVerticalLine(const GridDefinition& grid, double x) const;

    // The layout without its nearest line when that line is within `threshold`; otherwise the
    // very same layout, not even normalized.
    GridDefinition removeLineNear(const GridDefinition& grid, NormalizedPoint point,
                                  double threshold) const;

    // Over the stored lists; ties prefer the earlier value, and a horizontal line over a vertical.
    std::optional<NearestSplit> getNearestSplit(const GridDefinition& grid,
                                                NormalizedPoint point) const;
    GridDefinition removeSplit(const GridDefinition& grid, const NearestSplit& nearest) const;

private:
    GridSplitNormalizer splitNormalizer_;
};

} // namespace paneforge
