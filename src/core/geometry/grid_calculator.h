#pragma once

#include "core/layouts/grid_definition.h"

#include <optional>
#include <utility>
#include <vector>

namespace paneforge {

// Cleans a user-edited split list: clamp into [0, 1], keep interior values only (strictly more
// than epsilon from either edge), sort, and collapse runs closer than epsilon onto their first
// member. NaN never survives.
class GridSplitNormalizer {
public:
    static constexpr double kDefaultEpsilon = 0.0001;

    explicit GridSplitNormalizer(double epsilon = kDefaultEpsilon)
        : epsilon_(epsilon) {}

    double epsilon() const { return epsilon_; }
    std::vector<double> normalizeSplits(const std::vector<double>& splits) const;

private:
    double epsilon_;
};

struct GridSegment {
    double lower = 0.0;
    double upper = 0.0;

    friend bool operator==(const GridSegment&, const GridSegment&) = default;
};

// Turns a layout into its cells, row-major, and computes bounding rectangles of cells.
class GridCalculator {
public:
    explicit GridCalculator(GridSplitNormalizer splitNormalizer = GridSplitNormalizer())
        : splitNormalizer_(splitNormalizer) {}

    const GridSplitNormalizer& splitNormalizer() const { return splitNormalizer_; }

    std::vector<GridCell> getCells(const GridDefinition& grid) const;

    // Bounding box of the cells' rects (not their set union); none for an empty list.
    std::optional<NormalizedRect> unionRect(const std::vector<GridCell>& cells) const;

    // The n + 1 segments [lower, upper] that n cleaned splits cut [0, 1] into.
    std::vector<GridSegment> getSegments(const std::vector<double>& splits) const;

    // Cells of the given row and column segments, row-major.
    static std::vector<GridCell> buildCells(const std::vector<GridSegment>& rows,
                                            const std::vector<GridSegment>& columns);

private:
    GridSplitNormalizer splitNormalizer_;
};

} // namespace paneforge
