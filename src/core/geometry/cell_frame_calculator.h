#pragma once

#include "core/geometry/coordinate_transformer.h"
#include "core/layouts/grid_definition.h"

#include <QHash>
#include <QString>
#include <optional>
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
    // column, so a subset of a layout gets full margins on its own extremes. The margin is
    // taken through usableMargin.
    CellFrames getCellFrames(const std::vector<GridCell>& cells, const DesktopRect& visibleFrame,
                             double cellMarginPoints) const;

    // The configuration keeps any margin as written; laying zones out needs one that keeps their
    // frames near the display. Beyond the visible frame's longer side a margin changes nothing
    // that matters (a positive one already leaves every zone empty, a negative one only pushes
    // zones further off the display), so it is held to that length either way; one that is not
    // a number counts as none.
    static double usableMargin(double cellMarginPoints, const DesktopRect& visibleFrame);

    // The frame a window may be given for the chosen zones' frames: the union of those that are
    // not empty, cut to the visible frame; none when nothing remains or it is not finite. A
    // window is never sent off the display or shrunk to nothing, whatever the margin.
    static std::optional<DesktopRect> snapTarget(const std::vector<DesktopRect>& chosenFrames,
                                                 const DesktopRect& visibleFrame);

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
