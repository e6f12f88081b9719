#pragma once

#include "app/runtime/scheduler.h"
#include "app/runtime/weak_guard.h"
#include "core/geometry/desktop_geometry.h"
#include "core/layouts/display_layout_service.h"
#include "core/layouts/grid_editor_service.h"
#include "core/layouts/layout_preset.h"

#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace paneforge {

// What the zone editor hands to whoever opened it. The controller fills these in; the editor
// calls them and never touches the configuration itself.
struct GridEditorActions {
    // Close without saving.
    std::function<void()> onCancel;
    // Save the edited layout (splits and name) in place and close.
    std::function<void(const GridDefinition&)> onSave;
    // Save the edited layout as a new one; the layout to edit next, none when it failed.
    std::function<std::optional<GridDefinition>(const GridDefinition&)> onSaveAsNew;
    // Edit the stored layout with this id instead; none leaves the edited layout as it is.
    std::function<std::optional<GridDefinition>(const QString&)> onSelectLayout;
    // Delete the edited layout once the user confirms; the next layout to edit comes back
    // through GridEditorModel::applyGrid.
    std::function<void(const GridDefinition&)> onDelete;
    // The stored layouts the layout popup offers.
    std::function<std::vector<GridDefinition>()> layoutsProvider;
    // Whether Delete is allowed (the display keeps at least one layout).
    std::function<bool()> canDelete;
};

// The line being placed or dragged.
struct PendingSplit {
    GridLineOrientation orientation = GridLineOrientation::Horizontal;
    double value = 0.0;

    friend bool operator==(const PendingSplit&, const PendingSplit&) = default;
};

enum class EditorLineStyle { Normal, Dim, Hover, Flash, Active };

// One line to draw, in the editor's normalized coordinates.
struct EditorLine {
    GridLineOrientation orientation = GridLineOrientation::Horizontal;
    double value = 0.0;
    EditorLineStyle style = EditorLineStyle::Normal;

    friend bool operator==(const EditorLine&, const EditorLine&) = default;
};

// One zone as a window would get it, margins applied, in points from the edited frame's
// bottom-left corner (y up), with its size as the label shows it.
struct EditorZone {
    DesktopRect frame;
    QString label;
};

enum class EditorKey { Escape, Return, KeypadEnter, Other };

// The zone editor's whole interaction, without a window: hover, pick-up, the pending line, the
// Shift flip, the red flash, the keys and the save buttons' state. Points are fractions of the
// edited frame (top-left origin, y down); none means the pointer is outside it. The window
// forwards its events here and paints what this says.
class GridEditorModel {
public:
    static constexpr double kPickThreshold = 0.015;
    // Smaller than the pick threshold on purpose: a right click between the two flashes a line
    // without removing it.
    static constexpr double kRemovalThreshold = 0.01;
    static constexpr double kFlashSeconds = 0.15;

    enum class Change {
        Drawing, // lines, zones or hover changed: repaint
        Layout,  // another layout is edited: the name field, the popup and the buttons follow
        Problem, // the last save was refused, or that message went away
    };

    GridEditorModel(GridDefinition grid, const DesktopRect& visibleFrame, double cellMarginPoints,
                    GridEditorActions actions, Scheduler& scheduler);
    ~GridEditorModel();
    GridEditorModel(const GridEditorModel&) = delete;
    GridEditorModel& operator=(const GridEditorModel&) = delete;

    // One observer, the window; unset it before the window goes.
    void setObserver(std::function<void(Change)> observer) { observer_ = std::move(observer); }

    // A point in a view of the given size (top-left origin), or none outside it (right and
    // bottom edges are outside).
    static std::optional<NormalizedPoint> normalize(double x, double y, double width,
                                                    double height);

    // Pointer events.
    void pointerMoved(std::optional<NormalizedPoint> point);
    void primaryPressed(std::optional<NormalizedPoint> point, bool shift);
    void primaryDragged(std::optional<NormalizedPoint> point, bool shift);
    // Shift pressed or let go while the button is down: the pending line turns at once.
    void shiftChanged(bool shift);
    void primaryReleased(std::optional<NormalizedPoint> point);
    void secondaryClicked(std::optional<NormalizedPoint> point);
    // Escape cancels; Return and keypad Enter save when the name is usable. False when the key
    // is not the editor's.
    bool keyDown(EditorKey key);

    // The header: name field, layout popup, presets and buttons.
    const QString& name() const { return name_; }
    void setName(const QString& name);
    bool canSave() const { return DisplayLayoutService::isUsableName(name_); }
    bool canDelete() const { return actions_.canDelete && actions_.canDelete(); }
    std::vector<GridDefinition> layouts() const;
    void ok();
    void cancel();
    void saveAsNew();
    void deleteLayout();
    void selectLayout(const QString& gridId);
    void applyPreset(LayoutPresetId preset);

    // Edits `grid` from now on: its lines and its name.
    void applyGrid(const GridDefinition& grid);
    // Why the last save was refused; none clears it.
    void showProblem(std::optional<DisplayLayoutError> problem);
    std::optional<DisplayLayoutError> problem() const { return problem_; }

    // What to draw.
    const DesktopRect& visibleFrame() const { return visibleFrame_; }
    const GridDefinition& grid() const { return grid_; }
    // The edited layout under the name in the name field.
    GridDefinition editedGrid() const { return grid_.withName(name_); }
    // The layout with the pending line in place: what a release would leave.
    GridDefinition previewGrid() const;
    const std::optional<PendingSplit>& pendingSplit() const { return pendingSplit_; }
    const std::optional<NearestSplit>& hoveredSplit() const { return hoveredSplit_; }
    const std::optional<NearestSplit>& flashSplit() const { return flashSplit_; }
    // Every split line with its style, then the line being removed (while it flashes), then the
    // pending line.
    std::vector<EditorLine> lines() const;
    EditorLineStyle lineStyle(GridLineOrientation orientation, double value) const;
    // The zones of the preview layout.
    std::vector<EditorZone> zones() const;

private:
    std::optional<NearestSplit> nearestSplit(NormalizedPoint point, double threshold) const;
    PendingSplit makePendingSplit(NormalizedPoint point, GridLineOrientation base,
                                  bool shift) const;
    void updatePendingSplit(NormalizedPoint point, bool shift);
    void scheduleFlashClear();
    void clearDrag();
    void notify(Change change) const;

    GridDefinition grid_;
    QString name_;
    DesktopRect visibleFrame_;
    double cellMarginPoints_;
    GridEditorActions actions_;
    Scheduler& scheduler_;
    GridEditorService editorService_;
    std::optional<PendingSplit> pendingSplit_;
    std::optional<NearestSplit> hoveredSplit_;
    std::optional<NearestSplit> draggedSplit_;
    std::optional<GridLineOrientation> dragBaseOrientation_;
    std::optional<NormalizedPoint> lastDragPoint_;
    std::optional<NearestSplit> flashSplit_;
    ScheduledWorkHandle flashTimer_;
    std::optional<DisplayLayoutError> problem_;
    std::function<void(Change)> observer_;
    WeakGuard<GridEditorModel> guard_{this};
};

} // namespace paneforge
