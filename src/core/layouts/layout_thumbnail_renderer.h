#pragma once

#include "core/geometry/desktop_geometry.h"
#include "core/layouts/grid_definition.h"

#include <vector>

namespace paneforge {

// The cell rectangles of a layout preview, built exactly like real snapping builds them, with
// `bounds` standing in for the visible frame (y up, like desktop space; a view with y down flips
// at its boundary). Ordered by cell key, so a redraw gives the same order.
namespace LayoutThumbnailRenderer {
std::vector<DesktopRect> cellFrames(const GridDefinition& grid, const DesktopRect& bounds,
                                    double margin);
} // namespace LayoutThumbnailRenderer

} // namespace paneforge
