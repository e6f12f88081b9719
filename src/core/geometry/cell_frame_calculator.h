#pragma once

#include "core/geometry/coordinate_transformer.h"
#include "core/layouts/grid_definition.h"

#include <QHash>
#include <QString>
#include <vector>

namespace paneforge {

using CellFrames = QHash<QString, DesktopRect>;

// Lays cells onto a visible frame with margins: outer edges keep the full margin from the frame's
// border, neighbouring cells are separated by the margin (half from each side).
class CellFrameCalculator {
public:
    explicit CellFrameCalculator(CoordinateTransformer transformer = {})
        : transformer_(transformer) {}

    // Frames by cell key. The outer edges are those of the given list's own largest row and
    // column, so a subset of a layout gets full margins on its own extremes.
    CellFrames getCellFrames(const std::vector<GridCell>& cells, const DesktopRect& visibleFrame,
                             double cellMarginPoints) const;

private:
    CoordinateTransformer transformer_;
};

// The first cell, in list order, whose rect contains the point, edges included on all sides: a
// point on a shared line hits the upper or left cell.
class GridHitTester {
public:
    std::optional<GridCell> getCell(const std::vector<GridCell>& cells,
                                    NormalizedPoint point) const;
};

} // namespace paneforge
