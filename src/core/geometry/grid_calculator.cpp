#include "core/geometry/grid_calculator.h"

#include <algorithm>
#include <cmath>

namespace paneforge {

std::vector<double> GridSplitNormalizer::normalizeSplits(const std::vector<double>& splits) const {
    std::vector<double> interior;
    interior.reserve(splits.size());
    for (double value : splits) {
        if (value <= 0.0) {
            value = 0.0;
        }
        if (value > 1.0) {
            value = 1.0;
        }
        // A NaN fails both comparisons and is dropped here.
        if (epsilon_ < value && value < 1.0 - epsilon_) {
            interior.push_back(value);
        }
    }
    std::stable_sort(interior.begin(), interior.end());
    std::vector<double> result;
    result.reserve(interior.size());
    for (double value : interior) {
        if (result.empty() || std::abs(result.back() - value) > epsilon_) {
            result.push_back(value);
        }
    }
    return result;
}

std::vector<GridSegment> GridCalculator::getSegments(const std::vector<double>& splits) const {
    const std::vector<double> normalized = splitNormalizer_.normalizeSplits(splits);
    std::vector<GridSegment> result;
    result.reserve(normalized.size() + 1);
    double lower = 0.0;
    for (double split : normalized) {
        result.push_back({lower, split});
        lower = split;
    }
    result.push_back({lower, 1.0});
    return result;
}

std::vector<GridCell> GridCalculator::buildCells(const std::vector<GridSegment>& rows,
                                                 const std::vector<GridSegment>& columns) {
    std::vector<GridCell> result;
    result.reserve(rows.size() * columns.size());
    for (size_t r = 0; r < rows.size(); ++r) {
        for (size_t c = 0; c < columns.size(); ++c) {
            const GridSegment& row = rows[r];
            const GridSegment& column = columns[c];
            result.push_back(
                GridCell{static_cast<int>(r), static_cast<int>(c),
                         NormalizedRect{column.lower, row.lower, column.upper - column.lower,
                                        row.upper - row.lower}});
        }
    }
    return result;
}

std::vector<GridCell> GridCalculator::getCells(const GridDefinition& grid) const {
    return buildCells(getSegments(grid.horizontalSplits()), getSegments(grid.verticalSplits()));
}

std::optional<NormalizedRect> GridCalculator::unionRect(const std::vector<GridCell>& cells) const {
    if (cells.empty()) {
        return std::nullopt;
    }
    const NormalizedRect& first = cells.front().rect;
    double minX = first.x;
    double minY = first.y;
    double maxX = first.maxX();
    double maxY = first.maxY();
    for (const GridCell& cell : cells) {
        minX = std::min(minX, cell.rect.x);
        minY = std::min(minY, cell.rect.y);
        maxX = std::max(maxX, cell.rect.maxX());
        maxY = std::max(maxY, cell.rect.maxY());
    }
    return NormalizedRect{minX, minY, maxX - minX, maxY - minY};
}

} // namespace paneforge
