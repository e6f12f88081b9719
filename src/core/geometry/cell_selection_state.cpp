#include "core/geometry/cell_selection_state.h"

namespace paneforge {

std::vector<GridCell>
CellSelectionState::getSelectedCells(const std::vector<GridCell>& allCells) const {
    std::vector<GridCell> result;
    for (const GridCell& cell : allCells) {
        if (isSelected(cell)) {
            result.push_back(cell);
        }
    }
    return result;
}

} // namespace paneforge
