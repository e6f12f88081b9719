#include "core/layouts/grid_editor_service.h"

#include <cmath>

namespace paneforge {

namespace {

struct Closest {
    double value;
    double distance;
};

std::optional<Closest> closest(const std::vector<double>& splits, double coordinate) {
    std::optional<Closest> best;
    for (double split : splits) {
        const double distance = std::abs(coordinate - split);
        if (!best || distance < best->distance) {
            best = Closest{split, distance};
        }
    }
    return best;
}

} // namespace

GridDefinition GridEditorService::addHorizontalLine(const GridDefinition& grid, double y) const {
    std::vector<double> horizontal{y};
    horizontal.insert(horizontal.end(), grid.horizontalSplits().begin(),
                      grid.horizontalSplits().end());
    return grid.withSplits(splitNormalizer_.normalizeSplits(grid.verticalSplits()),
                           splitNormalizer_.normalizeSplits(horizontal));
}

GridDefinition GridEditorService::addVerticalLine(const GridDefinition& grid, double x) const {
    std::vector<double> vertical{x};
    vertical.insert(vertical.end(), grid.verticalSplits().begin(), grid.verticalSplits().end());
    return grid.withSplits(splitNormalizer_.normalizeSplits(vertical),
                           splitNormalizer_.normalizeSplits(grid.horizontalSplits()));
}

std::optional<NearestSplit> GridEditorService::getNearestSplit(const GridDefinition& grid,
                                                               NormalizedPoint point) const {
    const auto horizontal = closest(grid.horizontalSplits(), point.y);
    const auto vertical = closest(grid.verticalSplits(), point.x);
    if (horizontal && (!vertical || horizontal->distance <= vertical->distance)) {
        return NearestSplit{GridLineOrientation::Horizontal, horizontal->value,
                            horizontal->distance, GridSplitNormalizer::kDefaultEpsilon};
    }
    if (vertical) {
        return NearestSplit{GridLineOrientation::Vertical, vertical->value, vertical->distance,
                            GridSplitNormalizer::kDefaultEpsilon};
    }
    return std::nullopt;
}

GridDefinition GridEditorService::removeSplit(const GridDefinition& grid,
                                              const NearestSplit& nearest) const {
    const bool horizontal = nearest.orientation == GridLineOrientation::Horizontal;
    std::vector<double> kept;
    for (double split : horizontal ? grid.horizontalSplits() : grid.verticalSplits()) {
        if (std::abs(split - nearest.value) > nearest.epsilon) {
            kept.push_back(split);
        }
    }
    const auto cleaned = splitNormalizer_.normalizeSplits(kept);
    if (horizontal) {
        return grid.withSplits(splitNormalizer_.normalizeSplits(grid.verticalSplits()), cleaned);
    }
    return grid.withSplits(cleaned, splitNormalizer_.normalizeSplits(grid.horizontalSplits()));
}

GridDefinition GridEditorService::removeLineNear(const GridDefinition& grid, NormalizedPoint point,
                                                 double threshold) const {
    const auto nearest = getNearestSplit(grid, point);
    if (!nearest || nearest->distance > threshold) {
        return grid;
    }
    return removeSplit(grid, *nearest);
}

} // namespace paneforge
