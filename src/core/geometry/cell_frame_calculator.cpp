#include "core/geometry/cell_frame_calculator.h"

#include <algorithm>

namespace paneforge {

CellFrames CellFrameCalculator::getCellFrames(const std::vector<GridCell>& cells,
                                              const DesktopRect& visibleFrame,
                                              double cellMarginPoints) const {
    CellFrames frames;
    if (cells.empty()) {
        return frames;
    }
    int maxRow = 0;
    int maxColumn = 0;
    for (const GridCell& cell : cells) {
        maxRow = std::max(maxRow, cell.rowIndex);
        maxColumn = std::max(maxColumn, cell.columnIndex);
    }
    const double full = cellMarginPoints;
    const double half = cellMarginPoints * 0.5;
    for (const GridCell& cell : cells) {
        const DesktopRect r = transformer_.toFrame(cell.rect, visibleFrame);
        const double left = cell.columnIndex == 0 ? full : half;
        const double right = cell.columnIndex == maxColumn ? full : half;
        const double top = cell.rowIndex == 0 ? full : half;
        const double bottom = cell.rowIndex == maxRow ? full : half;
        frames.insert(cell.key(), DesktopRect(r.minX() + left, r.minY() + bottom,
                                              std::max(0.0, r.width() - left - right),
                                              std::max(0.0, r.height() - top - bottom)));
    }
    return frames;
}

std::optional<GridCell> GridHitTester::getCell(const std::vector<GridCell>& cells,
                                               NormalizedPoint point) const {
    for (const GridCell& cell : cells) {
        const NormalizedRect& rect = cell.rect;
        if (rect.x <= point.x && point.x <= rect.maxX() && rect.y <= point.y &&
            point.y <= rect.maxY()) {
            return cell;
        }
    }
    return std::nullopt;
}

} // namespace paneforge
