#pragma once

#include "app/input/event_tap_manager.h"
#include "app/ports/display_services.h"
#include "app/ports/input_event.h"
#include "app/ports/snap_overlay.h"
#include "app/ports/window_service.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/screen_diagnostics.h"
#include "app/runtime/weak_guard.h"
#include "core/config/config_store.h"
#include "core/diagnostics/diagnostic_log.h"
#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/cell_selection_state.h"
#include "core/geometry/coordinate_transformer.h"
#include "core/geometry/grid_calculator.h"
#include "core/layouts/display_layout_service.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace paneforge {

// Everything the snap controller works with, built by the application.
struct SnapControllerServices {
    using KeyWindowTitle = std::function<std::optional<QString>()>;

    ConfigStore& configStore;
    DisplayService& displayService;
    DisplayFrameService& displayFrameService;
    // The screens in the platform's order, with frames, visible frames and display numbers.
    const ScreenListing& screens;
    WindowService& windowService;
    EventTapManager& eventTapManager;
    SnapOverlayFactory& overlayFactory;
    Scheduler& scheduler;
    // The title of Paneforge's own key window, if one of its windows has focus.
    KeyWindowTitle keyWindowTitle;
    // The diagnostic log.
    DiagnosticLog log;
};

// Watches the global mouse and modifier events. While a window is dragged with one of the two
// snap combinations held it shows the zones of the display under the pointer and, on release,
// moves the window onto the chosen zone (single snap) or the bounding box of every zone passed
// over (multi snap). Releasing the combination mid-drag hides the zones and, if configured, gives
// the window back its earlier frame. Runs on the main thread; reads the configuration and finds
// the screen under the pointer once per event; never changes or holds back an event.
class SnapController {
public:
    explicit SnapController(SnapControllerServices services);
    ~SnapController();
    SnapController(const SnapController&) = delete;
    SnapController& operator=(const SnapController&) = delete;

    // After a snap the zones leave the screen this many seconds later, once the window manager
    // has placed the window.
    static constexpr double overlayHideDelay = 0.03;

    // Hands the event tap manager this controller's handler and arms the tap.
    void start();

    // The event tap's callback.
    void handleEvent(const InputEvent& event);

    // State, for diagnostics and tests.
    bool isDragging() const { return isDragging_; }
    bool isOverlayActive() const { return isOverlayActive_; }
    std::uint32_t activeModifiers() const { return activeModifiers_; }
    const CellSelectionState& selectionState() const { return selectionState_; }
    const std::optional<DesktopRect>& originalWindowFrame() const { return originalWindowFrame_; }
    const SnapOverlay* overlay() const { return overlayWindow_.get(); }

private:
    // The configuration's modifier combination, else the default one, else 0.
    std::uint32_t resolvedSingleSnapModifiers(const PaneforgeConfig& config) const;
    std::uint32_t resolvedMultiSnapModifiers(const PaneforgeConfig& config) const;
    // The configuration's choice, else the default one, else true.
    bool resolvedRestoreWindowSizeOnUnsnap(const PaneforgeConfig& config) const;
    // Exact equality with either combination: an extra modifier held is no match.
    bool matches(std::uint32_t modifiers, const PaneforgeConfig& config) const;
    QString modeName(std::uint32_t modifiers, const PaneforgeConfig& config) const;

    void armEventTap();
    void handleByType(const InputEvent& event);
    void handleMouseDown();
    void handleMouseDragged(const InputEvent& event);
    void updateOverlayState(DesktopPoint point, const InputEvent& event);
    void ensureActiveWindow(DesktopPoint point);
    // The display's layout: its active one, else the configuration's default.
    GridDefinition resolveGrid(const PaneforgeConfig& config, const ScreenInfo& screen) const;
    // `config` is the configuration as loaded for this event, none when it failed to load. False
    // when nothing changed (no configuration).
    bool updateSelection(DesktopPoint point, const ScreenInfo& screen, const GridDefinition& grid,
                         std::uint32_t modifiers, const std::optional<PaneforgeConfig>& config);
    void ensureOverlay(const DesktopRect& visibleFrame);
    void updateOverlay(const PaneforgeConfig& config, const DesktopRect& visibleFrame,
                       const GridDefinition& grid);
    void snapAndHide(DesktopPoint point);
    WindowRef windowForSnap(DesktopPoint point);
    // True when a frame was set.
    bool applySnap(const WindowRef& window, const PaneforgeConfig& config, DesktopPoint point,
                   const std::optional<ScreenInfo>& screen);
    void scheduleFrameReapply(const WindowRef& window, const DesktopRect& frame);
    void logSnapAttempt(DesktopPoint point, const std::optional<ScreenInfo>& screen,
                        const QString& layoutId, const QString& requested);
    void restoreIfNeeded(const PaneforgeConfig& config);
    void hideOverlay();
    void resetState();
    std::optional<PaneforgeConfig> loadConfig() const;

    SnapControllerServices services_;
    // What stands in for settings the configuration leaves out, or for a configuration that
    // cannot be read.
    const PaneforgeConfig defaults_;
    ScreenDiagnostics screenDiagnostics_;
    CoordinateTransformer coordinateTransformer_;
    GridCalculator gridCalculator_;
    CellFrameCalculator cellFrameCalculator_;
    GridHitTester gridHitTester_;
    DisplayLayoutService layouts_;

    std::unique_ptr<SnapOverlay> overlayWindow_;
    WindowRef activeWindow_;
    bool isDragging_ = false;
    bool isOverlayActive_ = false;
    CellSelectionState selectionState_;
    std::vector<GridCell> activeCells_;
    std::uint32_t activeModifiers_ = 0;
    std::optional<DesktopRect> originalWindowFrame_;
    std::optional<GridDefinition> activeGrid_;
    bool hasLoggedSnapDrag_ = false;
    // Set once the controller has handed its handler to the event tap.
    bool isAttachedToEventTap_ = false;
    // Queued work and the tap's handler hold this weakly and do nothing once it is gone.
    WeakGuard<SnapController> guard_{this};
};

} // namespace paneforge
