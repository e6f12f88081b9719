#include "app/snapping/snap_controller.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "core/input/hotkey_formatter.h"
#include "core/policies/frame_apply_policy.h"

namespace paneforge {

namespace {

constexpr double kSplitEpsilon = 0.0001;

std::uint32_t resolveModifiers(const std::optional<ModifierDefinition>& configured,
                               const std::optional<ModifierDefinition>& fallback) {
    if (configured) {
        return configured->modifiers;
    }
    return fallback ? fallback->modifiers : 0;
}

} // namespace

SnapController::SnapController(SnapControllerServices services)
    : services_(std::move(services))
    , defaults_(PaneforgeConfig::makeDefault())
    , screenDiagnostics_(services_.screens, services_.log)
    , gridCalculator_(GridSplitNormalizer(kSplitEpsilon))
    , cellFrameCalculator_(coordinateTransformer_) {}

SnapController::~SnapController() = default;

std::uint32_t SnapController::resolvedSingleSnapModifiers(const PaneforgeConfig& config) const {
    return resolveModifiers(config.singleSnapModifiers(), defaults_.singleSnapModifiers());
}

std::uint32_t SnapController::resolvedMultiSnapModifiers(const PaneforgeConfig& config) const {
    return resolveModifiers(config.multiSnapModifiers(), defaults_.multiSnapModifiers());
}

bool SnapController::resolvedRestoreWindowSizeOnUnsnap(const PaneforgeConfig& config) const {
    if (const auto configured = config.restoreWindowSizeOnUnsnap()) {
        return *configured;
    }
    return defaults_.restoreWindowSizeOnUnsnap().value_or(true);
}

bool SnapController::matches(std::uint32_t modifiers, const PaneforgeConfig& config) const {
    return modifiers == resolvedSingleSnapModifiers(config) ||
           modifiers == resolvedMultiSnapModifiers(config);
}

QString SnapController::modeName(std::uint32_t modifiers, const PaneforgeConfig& config) const {
    return modifiers == resolvedMultiSnapModifiers(config) ? QStringLiteral("multi")
                                                           : QStringLiteral("single");
}

std::optional<PaneforgeConfig> SnapController::loadConfig() const {
    try {
        return services_.configStore.loadConfig();
    } catch (const ConfigStoreError&) {
        // The store has logged why; each caller decides how to go on without a configuration.
        return std::nullopt;
    }
}

void SnapController::start() {
    isAttachedToEventTap_ = true;
    armEventTap();
}

void SnapController::armEventTap() {
    EventTapManager& tap = services_.eventTapManager;
    tap.setHandler(guard_.wrap(
        [](SnapController& self, const InputEvent& event) { self.handleEvent(event); }));
    tap.arm();
}

void SnapController::handleEvent(const InputEvent& event) {
    if (event.type == InputEvent::TapDisabledByTimeout ||
        event.type == InputEvent::TapDisabledByUserInput) {
        if (isAttachedToEventTap_) {
            armEventTap();
        }
        return;
    }
    // While the preferences window has focus, recording a modifier combination there must not
    // start a snap.
    if (services_.keyWindowTitle) {
        if (const auto title = services_.keyWindowTitle(); title == QStringLiteral("Preferences")) {
            return;
        }
    }
    handleByType(event);
}

void SnapController::handleByType(const InputEvent& event) {
    switch (event.type) {
    case InputEvent::LeftMouseDown:
        handleMouseDown();
        break;
    case InputEvent::LeftMouseUp:
        if (isDragging_) {
            if (isOverlayActive_) {
                snapAndHide(services_.displayFrameService.pointerLocation());
            }
            resetState();
        }
        break;
    case InputEvent::LeftMouseDragged:
        handleMouseDragged(event);
        break;
    case InputEvent::FlagsChanged:
        if (isDragging_) {
            updateOverlayState(services_.displayFrameService.pointerLocation(), event);
        }
        break;
    default:
        break;
    }
}

void SnapController::handleMouseDown() {
    isDragging_ = true;
    activeWindow_.reset();
    originalWindowFrame_.reset();
    selectionState_.clear();
    activeCells_.clear();
    hasLoggedSnapDrag_ = false;
}

void SnapController::updateOverlayState(DesktopPoint point, const InputEvent& event) {
    // One read per event; only the selection refuses to work from the defaults.
    const std::optional<PaneforgeConfig> loaded = loadConfig();
    const PaneforgeConfig& config = loaded ? *loaded : defaults_;
    const std::uint32_t modifiers = ModifierMapper::toCarbonModifiers(event.flags);
    activeModifiers_ = modifiers;

    if (matches(modifiers, config)) {
        services_.log(QStringLiteral("SnapController.updateOverlayState match modifiers=") +
                      QString::number(modifiers) + QStringLiteral(" mode=") +
                      modeName(modifiers, config));
        const auto screen = screenDiagnostics_.screen(point);
        if (!screen) {
            services_.log(QStringLiteral("SnapController.showOverlay visibleFrame=nil point=") +
                          SnapDiagnosticFormatter::formatPoint(point));
            return;
        }
        ensureActiveWindow(point);
        ensureOverlay(screen->visibleFrame);
        isOverlayActive_ = true;
        const GridDefinition grid = resolveGrid(config, *screen);
        if (!updateSelection(point, *screen, grid, modifiers, loaded)) {
            updateOverlay(config, screen->visibleFrame, grid);
        }
        return;
    }

    services_.log(QStringLiteral("SnapController.updateOverlayState noMatch modifiers=") +
                  QString::number(modifiers));
    restoreIfNeeded(config);
    hideOverlay();
    // The window, its cells and its original frame stay: pressing the combination again in the
    // same drag resumes with them.
    isOverlayActive_ = false;
    selectionState_.clear();
}

void SnapController::handleMouseDragged(const InputEvent& event) {
    if (!isDragging_ || !isOverlayActive_) {
        return;
    }
    const std::uint32_t modifiers = ModifierMapper::toCarbonModifiers(event.flags);
    activeModifiers_ = modifiers;
    const std::optional<PaneforgeConfig> loaded = loadConfig();
    const PaneforgeConfig& config = loaded ? *loaded : defaults_;
    if (matches(modifiers, config) && !hasLoggedSnapDrag_) {
        services_.log(QStringLiteral("SnapController.snapDragStart modifiers=") +
                      QString::number(modifiers) + QStringLiteral(" mode=") +
                      modeName(modifiers, config));
        hasLoggedSnapDrag_ = true;
    }
    // Without a configuration the selection stays as it is: no defaults there.
    if (!loaded) {
        return;
    }
    const DesktopPoint point = services_.displayFrameService.pointerLocation();
    if (const auto screen = screenDiagnostics_.screen(point)) {
        updateSelection(point, *screen, resolveGrid(*loaded, *screen), modifiers, loaded);
    }
}

void SnapController::ensureActiveWindow(DesktopPoint point) {
    if (activeWindow_) {
        return;
    }
    activeWindow_ = services_.windowService.windowUnderPoint(point);
    originalWindowFrame_ =
        activeWindow_ ? services_.windowService.frame(activeWindow_) : std::nullopt;
}

GridDefinition SnapController::resolveGrid(const PaneforgeConfig& config,
                                           const ScreenInfo& screen) const {
    if (const auto displayId = ScreenDiagnostics::displayId(screen)) {
        return layouts_.getActiveLayoutOrDefault(
            config, services_.displayService.getIdentifier(*displayId).stableId());
    }
    return config.defaultLayout();
}

bool SnapController::updateSelection(DesktopPoint point, const ScreenInfo& screen,
                                     const GridDefinition& grid, std::uint32_t modifiers,
                                     const std::optional<PaneforgeConfig>& config) {
    // Without a configuration nothing changes: no defaults here.
    if (!config) {
        return false;
    }
    const DesktopRect& visibleFrame = screen.visibleFrame;
    // The overlay follows the pointer from display to display.
    ensureOverlay(visibleFrame);
    activeGrid_ = grid;
    activeCells_ = gridCalculator_.getCells(grid);

    if (const auto normalized = coordinateTransformer_.toNormalizedPoint(point, visibleFrame)) {
        if (const auto cell = gridHitTester_.getCell(activeCells_, *normalized)) {
            // Single snap replaces the choice; multi snap only ever adds to it.
            if (modifiers != resolvedMultiSnapModifiers(*config)) {
                selectionState_.clear();
            }
            selectionState_.add(*cell);
        }
    }
    updateOverlay(*config, visibleFrame, grid);
    return true;
}

void SnapController::ensureOverlay(const DesktopRect& visibleFrame) {
    if (overlayWindow_ && overlayWindow_->frame() == visibleFrame) {
        overlayWindow_->orderFront();
        return;
    }
    // Only the window for the current display is kept.
    overlayWindow_.reset();
    overlayWindow_ = services_.overlayFactory.makeOverlay(visibleFrame);
    if (overlayWindow_) {
        overlayWindow_->orderFront();
    }
}

void SnapController::updateOverlay(const PaneforgeConfig& config, const DesktopRect& visibleFrame,
                                   const GridDefinition& grid) {
    const CellFrames frames =
        cellFrameCalculator_.getCellFrames(activeCells_, visibleFrame, config.cellMarginPoints());
    QList<DesktopRect> selectionFrames;
    for (const GridCell& cell : selectionState_.getSelectedCells(activeCells_)) {
        const auto found = frames.constFind(cell.key());
        if (found != frames.constEnd() && !found->isEmpty()) {
            selectionFrames.append(*found);
        }
    }
    const QList<DesktopRect> cellFrames = frames.values();
    if (overlayWindow_) {
        overlayWindow_->update(grid, cellFrames, selectionFrames);
    }
}

void SnapController::snapAndHide(DesktopPoint point) {
    bool moved = false;
    if (const WindowRef window = windowForSnap(point)) {
        if (const auto config = loadConfig()) {
            moved = applySnap(window, *config, point, screenDiagnostics_.screen(point));
        } else {
            services_.log(QStringLiteral("SnapController.snapAndHide config=nil"));
        }
    }
    if (moved) {
        // Taking a full-screen window off the screen makes the window system redraw everything
        // under it; done while the window manager places the snapped window, that holds the move
        // up by milliseconds. So the zones stay a moment longer, unless a new snap has taken them
        // over by then.
        services_.scheduler.postAfter(overlayHideDelay, guard_.wrap([](SnapController& self) {
            if (!self.isOverlayActive_) {
                self.hideOverlay();
            }
        }));
    } else {
        hideOverlay();
    }
    isOverlayActive_ = false;
    selectionState_.clear();
}

WindowRef SnapController::windowForSnap(DesktopPoint point) {
    ensureActiveWindow(point);
    WindowService& windows = services_.windowService;
    if (activeWindow_ && windows.isStandardWindow(activeWindow_)) {
        return activeWindow_;
    }
    WindowRef window = windows.windowUnderPoint(point);
    if (!window) {
        services_.log(QStringLiteral("SnapController.snapAndHide window=nil point=") +
                      SnapDiagnosticFormatter::formatPoint(point));
        return nullptr;
    }
    // Panels, docks and the desktop keep their place.
    if (!windows.isStandardWindow(window)) {
        services_.log(QStringLiteral("SnapController.snapAndHide notStandardWindow ") +
                      windows.describeWindow(window));
        return nullptr;
    }
    return window;
}

bool SnapController::applySnap(const WindowRef& window, const PaneforgeConfig& config,
                               DesktopPoint point, const std::optional<ScreenInfo>& screen) {
    if (!screen) {
        logSnapAttempt(point, screen, QStringLiteral("unknown"),
                       QStringLiteral("nil-visibleFrame"));
        return false;
    }
    // Margins are laid out against the whole layout: an outer zone keeps the full margin at the
    // display's edge, and the union of two neighbours covers the gap between them.
    const CellFrames frames = cellFrameCalculator_.getCellFrames(activeCells_, screen->visibleFrame,
                                                                 config.cellMarginPoints());
    std::optional<DesktopRect> target;
    for (const GridCell& cell : selectionState_.getSelectedCells(activeCells_)) {
        const auto found = frames.constFind(cell.key());
        if (found != frames.constEnd()) {
            target = target ? target->united(*found) : *found;
        }
    }
    logSnapAttempt(point, screen, resolveGrid(config, *screen).id(),
                   target ? SnapDiagnosticFormatter::formatRect(*target) : QStringLiteral("nil"));
    services_.log(QStringLiteral("SnapController.snapAndHide window ") +
                  services_.windowService.describeWindow(window) + QStringLiteral(" selected=") +
                  QString::number(selectionState_.count()));
    if (!target) {
        return false;
    }
    services_.windowService.setFrame(window, *target);
    scheduleFrameReapply(window, *target);
    return true;
}

void SnapController::scheduleFrameReapply(const WindowRef& window, const DesktopRect& frame) {
    // Some applications move their window again once the button is up; applying the frame twice
    // more (at once, and after a short delay) wins that race.
    const auto reapply = guard_.wrap([window, frame](SnapController& self) {
        self.services_.windowService.setFrame(window, frame);
    });
    services_.scheduler.post(reapply);
    services_.scheduler.postAfter(FrameApplyPolicy::postDragReapplyDelay, reapply);
}

void SnapController::logSnapAttempt(DesktopPoint point, const std::optional<ScreenInfo>& screen,
                                    const QString& layoutId, const QString& requested) {
    const bool inFrame = screen && screen->frame.contains(point);
    const bool inVisible = screen && screen->visibleFrame.contains(point);
    const auto displayId = screen ? ScreenDiagnostics::displayId(*screen) : std::nullopt;
    services_.log(QStringLiteral("SnapController.snapAndHide ") +
                  SnapDiagnosticFormatter::formatSnapAttempt(
                      point, inFrame, inVisible, displayId, layoutId,
                      static_cast<int>(activeCells_.size()), selectionState_.count(), requested));
}

void SnapController::restoreIfNeeded(const PaneforgeConfig& config) {
    if (!isDragging_ || !isOverlayActive_ || !resolvedRestoreWindowSizeOnUnsnap(config)) {
        return;
    }
    if (activeWindow_ && originalWindowFrame_) {
        services_.windowService.setFrame(activeWindow_, *originalWindowFrame_);
    }
}

void SnapController::hideOverlay() {
    if (overlayWindow_) {
        overlayWindow_->orderOut();
    }
}

void SnapController::resetState() {
    isDragging_ = false;
    isOverlayActive_ = false;
    activeWindow_.reset();
    selectionState_.clear();
    activeCells_.clear();
    activeGrid_.reset();
    activeModifiers_ = 0;
    originalWindowFrame_.reset();
    hasLoggedSnapDrag_ = false;
}

} // namespace paneforge
