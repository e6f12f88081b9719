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
    , cellFrameCalculator_(coordinateTransformer_)
    , self_(std::make_shared<SnapController*>(this)) {}

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
    std::weak_ptr<SnapController*> weak = self_;
    EventTapManager& tap = services_.eventTapManager;
    tap.setHandler([weak](const InputEvent& event) {
        if (const auto self = weak.lock()) {
            (*self)->handleEvent(event);
        }
    });
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
        const auto visibleFrame = getVisibleFrame(point);
        if (!visibleFrame) {
            services_.log(QStringLiteral("SnapController.showOverlay visibleFrame=nil point=") +
                          SnapDiagnosticFormatter::formatPoint(point));
            return;
        }
        ensureActiveWindow();
        ensureOverlay(*visibleFrame);
        isOverlayActive_ = true;
        updateSelection(point, modifiers, loaded);
        updateOverlay(config, *visibleFrame, point);
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
    updateSelection(services_.displayFrameService.pointerLocation(), modifiers, loaded);
}

void SnapController::ensureActiveWindow() {
    if (activeWindow_) {
        return;
    }
    activeWindow_ =
        services_.windowService.windowUnderPoint(services_.displayFrameService.pointerLocation());
    originalWindowFrame_ =
        activeWindow_ ? services_.windowService.frame(activeWindow_) : std::nullopt;
}

std::optional<DesktopRect> SnapController::getVisibleFrame(DesktopPoint point) const {
    if (const auto screen = screenDiagnostics_.screen(point)) {
        return screen->visibleFrame;
    }
    return std::nullopt;
}

std::optional<DisplayId> SnapController::getDisplayId(DesktopPoint point) const {
    if (const auto screen = screenDiagnostics_.screen(point)) {
        return ScreenDiagnostics::displayId(*screen);
    }
    return std::nullopt;
}

GridDefinition SnapController::resolveGrid(const PaneforgeConfig& config,
                                           DesktopPoint point) const {
    if (const auto displayId = getDisplayId(point)) {
        const QString stableId = services_.displayService.getIdentifier(*displayId).stableId();
        const auto entry = config.displays().find(stableId);
        if (entry != config.displays().end()) {
            if (auto layout = entry->second.activeLayout()) {
                return std::move(*layout);
            }
        }
    }
    return config.defaultLayout();
}

void SnapController::updateSelection(DesktopPoint point, std::uint32_t modifiers,
                                     const std::optional<PaneforgeConfig>& config) {
    // Without a configuration nothing changes: no defaults here.
    if (!config) {
        return;
    }
    const auto visibleFrame = getVisibleFrame(point);
    if (!visibleFrame) {
        return;
    }
    // The overlay follows the pointer from display to display.
    ensureOverlay(*visibleFrame);
    activeGrid_ = resolveGrid(*config, point);
    activeCells_ = gridCalculator_.getCells(*activeGrid_);

    if (const auto normalized = coordinateTransformer_.toNormalizedPoint(point, *visibleFrame)) {
        if (const auto cell = gridHitTester_.getCell(activeCells_, *normalized)) {
            // Single snap replaces the choice; multi snap only ever adds to it.
            if (modifiers != resolvedMultiSnapModifiers(*config)) {
                selectionState_.clear();
            }
            selectionState_.add(*cell);
        }
    }
    updateOverlay(*config, *visibleFrame, point);
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
                                   DesktopPoint point) {
    const GridDefinition grid = resolveGrid(config, point);
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
    if (const WindowRef window = windowForSnap(point)) {
        if (const auto config = loadConfig()) {
            applySnap(window, *config, point);
        } else {
            services_.log(QStringLiteral("SnapController.snapAndHide config=nil"));
        }
    }
    hideOverlay();
    isOverlayActive_ = false;
    selectionState_.clear();
}

WindowRef SnapController::windowForSnap(DesktopPoint point) {
    ensureActiveWindow();
    if (activeWindow_ &&
        services_.windowService.role(activeWindow_) == QStringLiteral("AXWindow")) {
        return activeWindow_;
    }
    WindowRef window = services_.windowService.windowUnderPoint(point);
    if (!window) {
        services_.log(QStringLiteral("SnapController.snapAndHide window=nil point=") +
                      SnapDiagnosticFormatter::formatPoint(point));
    }
    return window;
}

void SnapController::applySnap(const WindowRef& window, const PaneforgeConfig& config,
                               DesktopPoint point) {
    const auto visibleFrame = getVisibleFrame(point);
    if (!visibleFrame) {
        logSnapAttempt(point, QStringLiteral("unknown"), QStringLiteral("nil-visibleFrame"));
        return;
    }
    // Margins are laid out against the whole layout: an outer zone keeps the full margin at the
    // display's edge, and the union of two neighbours covers the gap between them.
    const CellFrames frames =
        cellFrameCalculator_.getCellFrames(activeCells_, *visibleFrame, config.cellMarginPoints());
    std::optional<DesktopRect> target;
    for (const GridCell& cell : selectionState_.getSelectedCells(activeCells_)) {
        const auto found = frames.constFind(cell.key());
        if (found != frames.constEnd()) {
            target = target ? target->united(*found) : *found;
        }
    }
    const QString layoutId = resolveGrid(config, point).id();
    logSnapAttempt(point, layoutId,
                   target ? SnapDiagnosticFormatter::formatRect(*target) : QStringLiteral("nil"));
    services_.log(QStringLiteral("SnapController.snapAndHide window ") +
                  services_.windowService.describeWindow(window) + QStringLiteral(" selected=") +
                  QString::number(selectionState_.count()));
    if (target) {
        services_.windowService.setFrame(window, *target);
        scheduleFrameReapply(window, *target);
    }
}

void SnapController::scheduleFrameReapply(const WindowRef& window, const DesktopRect& frame) {
    // Some applications move their window again once the button is up; applying the frame twice
    // more (at once, and after a short delay) wins that race.
    std::weak_ptr<SnapController*> weak = self_;
    const auto reapply = [weak, window, frame] {
        if (const auto self = weak.lock()) {
            (*self)->services_.windowService.setFrame(window, frame);
        }
    };
    services_.scheduler.post(reapply);
    services_.scheduler.postAfter(FrameApplyPolicy::postDragReapplyDelay, reapply);
}

void SnapController::logSnapAttempt(DesktopPoint point, const QString& layoutId,
                                    const QString& requested) {
    const auto screen = screenDiagnostics_.screen(point);
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
