#include "app/editor/grid_editor_controller.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"

#include <QStringList>

namespace paneforge {

namespace {

QString formatSplits(const std::vector<double>& splits) {
    QStringList values;
    for (const double split : splits) {
        values << SnapDiagnosticFormatter::formatDouble(split);
    }
    return QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']');
}

QString describe(const GridDefinition& grid) {
    return QStringLiteral("layout=%1 vertical=%2 horizontal=%3")
        .arg(grid.id(), formatSplits(grid.verticalSplits()), formatSplits(grid.horizontalSplits()));
}

} // namespace

GridEditorController::GridEditorController(GridEditorServices services)
    : services_(std::move(services))
    , systemLog_(LoggerFactory::makeLogger(QStringLiteral("GridEditorController"))) {}

GridEditorController::~GridEditorController() {
    // Windows before their models.
    for (auto& [id, overlay] : overlays_) {
        overlay.window.reset();
    }
}

void GridEditorController::log(const QString& line) const {
    systemLog_.info(line);
    if (services_.fileLog) {
        services_.fileLog(line);
    }
}

// Opening and closing

void GridEditorController::showEditorForMainDisplay() {
    log(QStringLiteral("GridEditorController.showEditorForMainDisplay"));
    DisplayFrameService& frames = services_.displayFrames;
    std::optional<DisplayId> display = frames.getDisplayId(frames.pointerLocation());
    if (!display) {
        const auto active = services_.displays.getActiveDisplays();
        if (active.empty()) {
            log(QStringLiteral("GridEditorController.showEditorForMainDisplay No active display"));
            return;
        }
        display = active.front();
    }
    showEditor(*display);
}

void GridEditorController::showEditor(DisplayId displayId) {
    std::optional<DesktopRect> visibleFrame = services_.displayFrames.getVisibleFrame(displayId);
    if (!visibleFrame) {
        const auto active = services_.displays.getActiveDisplays();
        if (!active.empty()) {
            visibleFrame = services_.displayFrames.getVisibleFrame(active.front());
        }
    }
    if (!visibleFrame) {
        log(QStringLiteral("GridEditorController.showEditor displayId=%1 No visible frame")
                .arg(displayId));
        return;
    }
    try {
        editorConfig_ = services_.configStore.loadConfig();
    } catch (const std::exception&) {
        editorConfig_ = PaneforgeConfig::makeDefault();
    }
    editorDisplayStableId_ = services_.displays.getIdentifier(displayId).stableId();
    const GridDefinition grid =
        services_.layoutService.getOrCreateLayout(editorConfig_, editorDisplayStableId_);
    log(QStringLiteral("GridEditorController.showEditor displayId=%1 display=%2 %3")
            .arg(displayId)
            .arg(editorDisplayStableId_, describe(grid)));
    showOverlay(grid, *visibleFrame);
}

void GridEditorController::showOverlay(const GridDefinition& grid,
                                       const DesktopRect& visibleFrame) {
    closeAllOverlays();
    const OverlayId id = nextOverlayId_++;
    Overlay overlay;
    overlay.model = std::make_unique<GridEditorModel>(
        grid, visibleFrame, editorConfig_.cellMarginPoints(), makeActions(id), services_.scheduler);
    overlay.window = services_.windows.makeGridEditorWindow(*overlay.model);
    GridEditorWindow& window = *overlay.window;
    overlays_.emplace(id, std::move(overlay));
    window.show();
}

void GridEditorController::closeAllOverlays() {
    std::vector<OverlayId> ids;
    for (const auto& [id, overlay] : overlays_) {
        ids.push_back(id);
    }
    for (const OverlayId id : ids) {
        close(id);
    }
}

void GridEditorController::close(OverlayId id) {
    const auto it = overlays_.find(id);
    if (it == overlays_.end()) {
        return;
    }
    auto overlay = std::make_shared<Overlay>(std::move(it->second));
    overlays_.erase(it);
    overlay->window->close();
    // The editor may be the caller (a key or a button of its own): it goes once that returns.
    services_.scheduler.post([overlay]() mutable {
        overlay->window.reset();
        overlay->model.reset();
    });
}

GridEditorModel* GridEditorController::model(OverlayId id) const {
    const auto it = overlays_.find(id);
    return it == overlays_.end() ? nullptr : it->second.model.get();
}

GridEditorActions GridEditorController::makeActions(OverlayId id) {
    GridEditorActions actions;
    actions.onCancel = guard_.wrap([id](GridEditorController& self) {
        self.log(QStringLiteral("GridEditorController.cancel"));
        self.close(id);
    });
    actions.onSave = guard_.wrap([id](GridEditorController& self, const GridDefinition& grid) {
        self.saveAndClose(id, grid);
    });
    actions.onSaveAsNew =
        guard_.wrapOr(std::optional<GridDefinition>(),
                      [id](GridEditorController& self, const GridDefinition& grid) {
                          return self.saveAsNew(id, grid);
                      });
    actions.onSelectLayout = guard_.wrapOr(std::optional<GridDefinition>(),
                                           [](GridEditorController& self, const QString& gridId) {
                                               return self.persistAndSelect(gridId);
                                           });
    actions.onDelete = guard_.wrap([id](GridEditorController& self, const GridDefinition& grid) {
        self.confirmDelete(id, grid);
    });
    actions.layoutsProvider =
        guard_.wrapOr(std::vector<GridDefinition>(),
                      [](const GridEditorController& self) { return self.layoutsForPopup(); });
    actions.canDelete = guard_.wrapOr(
        false, [](const GridEditorController& self) { return self.canDeleteStoredLayouts(); });
    return actions;
}

// Saving

void GridEditorController::persist(const PaneforgeConfig& config) {
    editorConfig_ = config;
    try {
        services_.configStore.saveConfig(config);
    } catch (const std::exception&) {
        // The store logs its own failures; the editor goes on with what it has.
    }
}

void GridEditorController::saveAndClose(OverlayId id, const GridDefinition& grid) {
    try {
        const PaneforgeConfig saved =
            services_.layoutService.save(editorConfig_, editorDisplayStableId_, grid);
        persist(saved);
    } catch (const DisplayLayoutException& error) {
        log(QStringLiteral("GridEditorController.save refused=%1")
                .arg(QLatin1String(error.what())));
        if (GridEditorModel* editor = model(id)) {
            editor->showProblem(error.error());
        }
        return;
    }
    log(QStringLiteral("GridEditorController.save display=%1 %2")
            .arg(editorDisplayStableId_, describe(grid)));
    close(id);
}

std::optional<GridDefinition> GridEditorController::saveAsNew(OverlayId id,
                                                              const GridDefinition& grid) {
    PaneforgeConfig saved = editorConfig_;
    try {
        saved = services_.layoutService.saveAsNew(editorConfig_, editorDisplayStableId_, grid);
    } catch (const DisplayLayoutException& error) {
        log(QStringLiteral("GridEditorController.saveAsNew refused=%1")
                .arg(QLatin1String(error.what())));
        if (GridEditorModel* editor = model(id)) {
            editor->showProblem(error.error());
        }
        return std::nullopt;
    }
    const GridDefinition active = persistAndLoadActive(saved);
    log(QStringLiteral("GridEditorController.saveAsNew display=%1 %2")
            .arg(editorDisplayStableId_, describe(active)));
    return active;
}

GridDefinition GridEditorController::persistAndLoadActive(const PaneforgeConfig& config) {
    persist(config);
    return services_.layoutService.getOrCreateLayout(editorConfig_, editorDisplayStableId_);
}

std::optional<GridDefinition> GridEditorController::persistAndSelect(const QString& gridId) {
    try {
        const auto [config, grid] =
            services_.layoutService.selectLayout(editorConfig_, editorDisplayStableId_, gridId);
        persist(config);
        log(QStringLiteral("GridEditorController.select display=%1 layout=%2")
                .arg(editorDisplayStableId_, grid.id()));
        return grid;
    } catch (const DisplayLayoutException&) {
        // Not one of this display's stored layouts (the one made for a display without any).
        return std::nullopt;
    }
}

std::vector<GridDefinition> GridEditorController::layoutsForPopup() const {
    auto layouts = services_.layoutService.listLayouts(editorConfig_, editorDisplayStableId_);
    if (layouts.empty()) {
        layouts.push_back(
            services_.layoutService.getOrCreateLayout(editorConfig_, editorDisplayStableId_));
    }
    return layouts;
}

// Deleting

bool GridEditorController::canDeleteStoredLayouts() const {
    return services_.layoutService.listLayouts(editorConfig_, editorDisplayStableId_).size() >= 2;
}

void GridEditorController::confirmDelete(OverlayId id, const GridDefinition& grid) {
    if (!canDeleteStoredLayouts()) {
        return;
    }
    QString name = grid.name();
    for (const GridDefinition& stored :
         services_.layoutService.listLayouts(editorConfig_, editorDisplayStableId_)) {
        if (stored.id() == grid.id()) {
            name = stored.name();
        }
    }
    const AlertConfirmation question{
        QStringLiteral("Delete \u201C%1\u201D?").arg(name),
        QStringLiteral("This layout will be removed from this display."), QStringLiteral("Delete"),
        QStringLiteral("Cancel")};
    services_.alerts.confirm(
        question, guard_.wrap([id, gridId = grid.id()](GridEditorController& self, bool confirmed) {
            // The editor may have closed while the question was open.
            if (confirmed && self.model(id)) {
                self.deleteAndReload(id, gridId);
            }
        }));
}

void GridEditorController::deleteAndReload(OverlayId id, const QString& gridId) {
    PaneforgeConfig deleted = editorConfig_;
    try {
        deleted =
            services_.layoutService.deleteLayout(editorConfig_, editorDisplayStableId_, gridId);
    } catch (const DisplayLayoutException& error) {
        log(QStringLiteral("GridEditorController.delete refused=%1")
                .arg(QLatin1String(error.what())));
        return;
    }
    const GridDefinition active = persistAndLoadActive(deleted);
    log(QStringLiteral("GridEditorController.delete display=%1 layout=%2 next=%3")
            .arg(editorDisplayStableId_, gridId, active.id()));
    if (GridEditorModel* editor = model(id)) {
        editor->applyGrid(active);
    }
}

} // namespace paneforge
