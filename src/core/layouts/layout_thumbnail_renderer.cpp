#include "core/layouts/layout_thumbnail_renderer.h"

#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/grid_calculator.h"

#include <algorithm>

namespace paneforge {

std::vector<DesktopRect> LayoutThumbnailRenderer::cellFrames(const GridDefinition& grid,
                                                             const DesktopRect& bounds,
                                                             double margin) {
    const GridCalculator calculator(GridSplitNormalizer(GridSplitNormalizer::kDefaultEpsilon));
    const auto cells = GridCalculator::buildCells(calculator.getSegments(grid.horizontalSplits()),
                                                  calculator.getSegments(grid.verticalSplits()));
    const CellFrames frames = CellFrameCalculator().getCellFrames(cells, bounds, margin);
    QStringList keys = frames.keys();
    // Plain string order ("r10-c0" before "r2-c0"), the same on every redraw.
    std::sort(keys.begin(), keys.end());
    std::vector<DesktopRect> result;
    result.reserve(static_cast<size_t>(keys.size()));
    for (const QString& key : keys) {
        result.push_back(frames.value(key));
    }
    return result;
}

} // namespace paneforge
