#pragma once

#include "core/layouts/grid_definition.h"

#include <QSet>
#include <QString>
#include <vector>

namespace paneforge {

// The zones chosen during one drag, by cell key. Cells are only ever added; clear() starts over.
class CellSelectionState {
public:
    void clear() { selectedKeys_.clear(); }
    void add(const GridCell& cell) { selectedKeys_.insert(cell.key()); }
    bool isSelected(const GridCell& cell) const { return selectedKeys_.contains(cell.key()); }
    bool isEmpty() const { return selectedKeys_.isEmpty(); }
    int count() const { return static_cast<int>(selectedKeys_.size()); }
    const QSet<QString>& selectedKeys() const { return selectedKeys_; }

    // The selected cells in the order of `allCells`, not in the order they were chosen.
    std::vector<GridCell> getSelectedCells(const std::vector<GridCell>& allCells) const;

private:
    QSet<QString> selectedKeys_;
};

} // namespace paneforge
