#pragma once

#include "app/ports/display_services.h"
#include "app/ports/grid_editor_view.h"
#include "app/ports/shell_windows.h"
#include "core/config/config_store.h"
#include "core/diagnostics/logger_factory.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace paneforge {

struct GridEditorServices {
    ConfigStore& configStore;
    DisplayService& displays;
    DisplayFrameService& displayFrames;
    GridEditorWindowFactory& windows;
    AlertPresenter& alerts;
    Scheduler& scheduler;
    std::function<void(const QString&)> fileLog;
    DisplayLayoutService layoutService = DisplayLayoutService();
};

// Opens the zone editor over one display and turns what the user does there into changes of
// that display's layouts: save in place (and close), save as new, switch to another stored
// layout, delete one after asking, cancel. One editor at a time: opening one closes the others.
// Saves go straight to the store without a change notification; the snapping reads the file
// on every drag anyway.
class GridEditorController {
public:
    explicit GridEditorController(GridEditorServices services);
    ~GridEditorController();
    GridEditorController(const GridEditorController&) = delete;
    GridEditorController& operator=(const GridEditorController&) = delete;

    // The display under the pointer, where the user is looking; else the first display.
    void showEditorForMainDisplay();
    void showEditor(DisplayId displayId);
    void closeAllOverlays();

    std::size_t openEditorCount() const { return overlays_.size(); }

private:
    using OverlayId = std::uint64_t;
    struct Overlay {
        // The window goes first: it observes the model.
        std::unique_ptr<GridEditorModel> model;
        std::unique_ptr<GridEditorWindow> window;
    };

    void showOverlay(const GridDefinition& grid, const DesktopRect& visibleFrame);
    GridEditorActions makeActions(OverlayId id);
    void close(OverlayId id);
    GridEditorModel* model(OverlayId id) const;

    void saveAndClose(OverlayId id, const GridDefinition& grid);
    std::optional<GridDefinition> saveAsNew(OverlayId id, const GridDefinition& grid);
    std::optional<GridDefinition> persistAndSelect(const QString& gridId);
    std::vector<GridDefinition> layoutsForPopup() const;
    bool canDeleteStoredLayouts() const;
    void confirmDelete(OverlayId id, const GridDefinition& grid);
    void deleteAndReload(OverlayId id, const QString& gridId);
    GridDefinition persistAndLoadActive(const PaneforgeConfig& config);
    void persist(const PaneforgeConfig& config);

    void log(const QString& line) const;

    GridEditorServices services_;
    Logger systemLog_;
    std::map<OverlayId, Overlay> overlays_;
    OverlayId nextOverlayId_ = 1;
    // The configuration as the editor last loaded or saved it, and the edited display.
    PaneforgeConfig editorConfig_ = PaneforgeConfig::makeDefault();
    QString editorDisplayStableId_;
    WeakGuard<GridEditorController> guard_{this};
};

} // namespace paneforge
