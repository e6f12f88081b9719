#include "app/editor/grid_editor_model.h"

#include "core/geometry/cell_frame_calculator.h"

#include <algorithm>
#include <cmath>

namespace paneforge {

namespace {

GridLineOrientation flipped(GridLineOrientation orientation) {
    return orientation == GridLineOrientation::Horizontal ? GridLineOrientation::Vertical
                                                          : GridLineOrientation::Horizontal;
}

// Within `tolerance` of `value`: the same line.
bool sameLine(const std::optional<NearestSplit>& split, GridLineOrientation orientation,
              double value) {
    return split && split->orientation == orientation &&
           std::abs(split->value - value) < split->epsilon;
}

// The grid without every split of the picked line's orientation that lies within its
// tolerance; nothing else is cleaned.
GridDefinition withoutLine(const GridDefinition& grid, const NearestSplit& line) {
    const auto kept = [&](const std::vector<double>& splits) {
        std::vector<double> result;
        std::copy_if(splits.begin(), splits.end(), std::back_inserter(result),
                     [&](double split) { return std::abs(split - line.value) > line.epsilon; });
        return result;
    };
    if (line.orientation == GridLineOrientation::Vertical) {
        return grid.withSplits(kept(grid.verticalSplits()), grid.horizontalSplits());
    }
    return grid.withSplits(grid.verticalSplits(), kept(grid.horizontalSplits()));
}

} // namespace

GridEditorModel::GridEditorModel(GridDefinition grid, const DesktopRect& visibleFrame,
                                 double cellMarginPoints, GridEditorActions actions,
                                 Scheduler& scheduler)
    : grid_(std::move(grid))
    , name_(grid_.name())
    , visibleFrame_(visibleFrame)
    , cellMarginPoints_(cellMarginPoints)
    , actions_(std::move(actions))
    , scheduler_(scheduler) {}

GridEditorModel::~GridEditorModel() {
    if (flashTimer_) {
        flashTimer_->cancel();
    }
}

std::optional<NormalizedPoint> GridEditorModel::normalize(double x, double y, double width,
                                                          double height) {
    if (!(width > 0 && height > 0 && x >= 0 && y >= 0 && x < width && y < height)) {
        return std::nullopt;
    }
    return NormalizedPoint{x / width, y / height};
}

void GridEditorModel::notify(Change change) const {
    if (observer_) {
        observer_(change);
    }
}

std::optional<NearestSplit> GridEditorModel::nearestSplit(NormalizedPoint point,
                                                          double threshold) const {
    auto nearest = editorService_.getNearestSplit(grid_, point);
    if (nearest && nearest->distance <= threshold) {
        return nearest;
    }
    return std::nullopt;
}

PendingSplit GridEditorModel::makePendingSplit(NormalizedPoint point, GridLineOrientation base,
                                               bool shift) const {
    const GridLineOrientation orientation = shift ? flipped(base) : base;
    return {orientation, orientation == GridLineOrientation::Vertical ? point.x : point.y};
}

// Pointer

void GridEditorModel::pointerMoved(std::optional<NormalizedPoint> point) {
    auto hovered = point ? nearestSplit(*point, kPickThreshold) : std::nullopt;
    if (hovered == hoveredSplit_) {
        return;
    }
    hoveredSplit_ = hovered;
    notify(Change::Drawing);
}

void GridEditorModel::primaryPressed(std::optional<NormalizedPoint> point, bool shift) {
    if (!point) {
        return;
    }
    draggedSplit_ = nearestSplit(*point, kPickThreshold);
    if (draggedSplit_) {
        grid_ = withoutLine(grid_, *draggedSplit_);
        dragBaseOrientation_ = draggedSplit_->orientation;
    } else {
        // A press on empty space starts a new horizontal line.
        dragBaseOrientation_ = GridLineOrientation::Horizontal;
    }
    lastDragPoint_ = point;
    // The hover band stays where a picked line came from until the pointer moves freely again.
    pendingSplit_ = makePendingSplit(*point, *dragBaseOrientation_, shift);
    notify(Change::Drawing);
}

void GridEditorModel::updatePendingSplit(NormalizedPoint point, bool shift) {
    if (dragBaseOrientation_) {
        pendingSplit_ = makePendingSplit(point, *dragBaseOrientation_, shift);
    } else if (pendingSplit_) {
        pendingSplit_ = makePendingSplit(point, pendingSplit_->orientation, false);
    } else {
        return;
    }
    notify(Change::Drawing);
}

void GridEditorModel::primaryDragged(std::optional<NormalizedPoint> point, bool shift) {
    if (!point) {
        return;
    }
    lastDragPoint_ = point;
    updatePendingSplit(*point, shift);
}

void GridEditorModel::shiftChanged(bool shift) {
    if (lastDragPoint_ && dragBaseOrientation_) {
        updatePendingSplit(*lastDragPoint_, shift);
    }
}

void GridEditorModel::primaryReleased(std::optional<NormalizedPoint> point) {
    // Outside the frame nothing happens; the drag stays as it was.
    if (!point) {
        return;
    }
    grid_ = previewGrid();
    clearDrag();
    hoveredSplit_ = nearestSplit(*point, kPickThreshold);
    notify(Change::Drawing);
}

void GridEditorModel::secondaryClicked(std::optional<NormalizedPoint> point) {
    if (!point) {
        return;
    }
    flashSplit_ = nearestSplit(*point, kPickThreshold);
    scheduleFlashClear();
    grid_ = editorService_.removeLineNear(grid_, *point, kRemovalThreshold);
    hoveredSplit_ = nearestSplit(*point, kPickThreshold);
    notify(Change::Drawing);
}

void GridEditorModel::scheduleFlashClear() {
    if (flashTimer_) {
        flashTimer_->cancel();
    }
    flashTimer_ = scheduler_.postAfter(kFlashSeconds, guard_.wrap([](GridEditorModel& self) {
        self.flashSplit_.reset();
        self.notify(Change::Drawing);
    }));
}

void GridEditorModel::clearDrag() {
    pendingSplit_.reset();
    draggedSplit_.reset();
    dragBaseOrientation_.reset();
    lastDragPoint_.reset();
}

bool GridEditorModel::keyDown(EditorKey key) {
    switch (key) {
    case EditorKey::Escape:
        cancel();
        return true;
    case EditorKey::Return:
    case EditorKey::KeypadEnter:
        ok();
        return true;
    case EditorKey::Other:
        break;
    }
    return false;
}

// Header

void GridEditorModel::setName(const QString& name) {
    if (name == name_) {
        return;
    }
    name_ = name;
    if (problem_) {
        showProblem(std::nullopt);
    }
}

std::vector<GridDefinition> GridEditorModel::layouts() const {
    return actions_.layoutsProvider ? actions_.layoutsProvider() : std::vector<GridDefinition>{};
}

void GridEditorModel::ok() {
    if (canSave() && actions_.onSave) {
        actions_.onSave(editedGrid());
    }
}

void GridEditorModel::cancel() {
    if (actions_.onCancel) {
        actions_.onCancel();
    }
}

void GridEditorModel::saveAsNew() {
    if (!canSave() || !actions_.onSaveAsNew) {
        return;
    }
    if (const auto next = actions_.onSaveAsNew(editedGrid())) {
        applyGrid(*next);
    }
}

void GridEditorModel::deleteLayout() {
    if (canDelete() && actions_.onDelete) {
        actions_.onDelete(editedGrid());
    }
}

void GridEditorModel::selectLayout(const QString& gridId) {
    if (!actions_.onSelectLayout) {
        return;
    }
    if (const auto selected = actions_.onSelectLayout(gridId)) {
        applyGrid(*selected);
    }
}

void GridEditorModel::applyPreset(LayoutPresetId preset) {
    grid_ = LayoutPresetApplier::applied(grid_, LayoutPresetCatalog::preset(preset));
    clearDrag();
    hoveredSplit_.reset();
    notify(Change::Drawing);
}

void GridEditorModel::applyGrid(const GridDefinition& grid) {
    grid_ = grid;
    name_ = grid.name();
    problem_.reset();
    clearDrag();
    hoveredSplit_.reset();
    notify(Change::Layout);
    notify(Change::Drawing);
}

void GridEditorModel::showProblem(std::optional<DisplayLayoutError> problem) {
    problem_ = problem;
    notify(Change::Problem);
}

// Drawing

GridDefinition GridEditorModel::previewGrid() const {
    if (!pendingSplit_) {
        return grid_;
    }
    return pendingSplit_->orientation == GridLineOrientation::Vertical
               ? editorService_.addVerticalLine(grid_, pendingSplit_->value)
               : editorService_.addHorizontalLine(grid_, pendingSplit_->value);
}

EditorLineStyle GridEditorModel::lineStyle(GridLineOrientation orientation, double value) const {
    if (sameLine(flashSplit_, orientation, value)) {
        return EditorLineStyle::Flash;
    }
    if (sameLine(hoveredSplit_, orientation, value)) {
        return EditorLineStyle::Hover;
    }
    return hoveredSplit_ ? EditorLineStyle::Dim : EditorLineStyle::Normal;
}

std::vector<EditorLine> GridEditorModel::lines() const {
    std::vector<EditorLine> result;
    bool flashDrawn = false;
    const auto add = [&](GridLineOrientation orientation, const std::vector<double>& splits) {
        for (const double value : splits) {
            const EditorLineStyle style = lineStyle(orientation, value);
            flashDrawn = flashDrawn || style == EditorLineStyle::Flash;
            result.push_back({orientation, value, style});
        }
    };
    add(GridLineOrientation::Horizontal, grid_.horizontalSplits());
    add(GridLineOrientation::Vertical, grid_.verticalSplits());
    // A removed line is gone from the layout, yet it still shows in red for a moment.
    if (flashSplit_ && !flashDrawn) {
        result.push_back({flashSplit_->orientation, flashSplit_->value, EditorLineStyle::Flash});
    }
    if (pendingSplit_) {
        result.push_back(
            {pendingSplit_->orientation, pendingSplit_->value, EditorLineStyle::Active});
    }
    return result;
}

std::vector<EditorZone> GridEditorModel::zones() const {
    const DesktopRect bounds(0, 0, visibleFrame_.width(), visibleFrame_.height());
    const GridCalculator calculator;
    const std::vector<GridCell> cells = calculator.getCells(previewGrid());
    const CellFrames frames = CellFrameCalculator().getCellFrames(cells, bounds, cellMarginPoints_);
    std::vector<EditorZone> zones;
    zones.reserve(cells.size());
    for (const GridCell& cell : cells) {
        const auto it = frames.constFind(cell.key());
        if (it == frames.constEnd()) {
            continue;
        }
        const DesktopRect& frame = *it;
        zones.push_back({frame, QStringLiteral("%1 \u00D7 %2")
                                    .arg(std::max(0.0, std::round(frame.width())))
                                    .arg(std::max(0.0, std::round(frame.height())))});
    }
    return zones;
}

} // namespace paneforge
