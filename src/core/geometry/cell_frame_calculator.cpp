#include "core/geometry/cell_frame_calculator.h"

#include <algorithm>
#include <cmath>

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
    const double full = usableMargin(cellMarginPoints, visibleFrame);
    const double half = full * 0.5;
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

double CellFrameCalculator::usableMargin(double cellMarginPoints, const DesktopRect& visibleFrame) {
    if (std::isnan(cellMarginPoints)) {
        return 0.0;
    }
    const double limit = std::max(std::abs(visibleFrame.width()), std::abs(visibleFrame.height()));
    if (!std::isfinite(limit)) {
        return 0.0;
    }
    return std::clamp(cellMarginPoints, -limit, limit);
}

std::optional<DesktopRect>
CellFrameCalculator::snapTarget(const std::vector<DesktopRect>& chosenFrames,
                                const DesktopRect& visibleFrame) {
    std::optional<DesktopRect> united;
    for (const DesktopRect& frame : chosenFrames) {
        if (!frame.isEmpty()) {
            united = united ? united->united(frame) : frame.standardized();
        }
    }
    if (!united) {
        return std::nullopt;
    }
    const DesktopRect v = visibleFrame.standardized();
    const double minX = std::max(united->minX(), v.minX());
    const double minY = std::max(united->minY(), v.minY());
    const double maxX = std::min(united->maxX(), v.maxX());
    const double maxY = std::min(united->maxY(), v.maxY());
    // Written so that NaN anywhere fails the test.
    if (!(maxX > minX && maxY > minY && std::isfinite(maxX - minX) && std::isfinite(maxY - minY))) {
        return std::nullopt;
    }
    return DesktopRect(minX, minY, maxX - minX, maxY - minY);
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
