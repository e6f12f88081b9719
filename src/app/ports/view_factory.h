#pragma once

#include "app/ports/backup_views.h"
#include "app/ports/grid_editor_view.h"
#include "app/ports/key_down_monitor_api.h"
#include "app/ports/layout_switch_views.h"
#include "app/ports/onboarding_views.h"
#include "app/ports/preferences_view.h"
#include "app/ports/shell_windows.h"
#include "app/ports/snap_overlay.h"
#include "app/ports/status_item_view.h"

#include <QString>
#include <memory>
#include <optional>

namespace paneforge {

// Every window the controllers show, made by one factory (Qt Widgets in the agent, fakes in
// tests). Controllers never see a widget.
class ViewFactory {
public:
    virtual ~ViewFactory() = default;

    virtual SnapOverlayFactory& snapOverlays() = 0;
    virtual GridEditorWindowFactory& gridEditors() = 0;
    virtual std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) = 0;
    // "About Paneforge": the name, the version and what Paneforge does.
    virtual std::unique_ptr<ShellWindow> makeAboutWindow() = 0;
    // "Preferences": reports what the user changes to `events`, which outlives it.
    virtual std::unique_ptr<PreferencesView> makePreferencesView(PreferencesFormEvents& events) = 0;
    virtual AlertPresenter& alerts() = 0;
    // The heads-up display of layout cycling and the layout selector.
    virtual LayoutSwitchViews& layoutSwitchViews() = 0;
    virtual BackupViews& backupViews() = 0;
    // Key presses in Paneforge's own windows, for recording hot keys.
    virtual KeyDownMonitorApi& keyDownMonitor() = 0;
    // The title of Paneforge's window that has the keyboard, if one has.
    virtual std::optional<QString> keyWindowTitle() = 0;
    // "Quick Start", the three-page guide.
    virtual std::unique_ptr<QuickStartView> makeQuickStartWindow(QuickStartActions actions) = 0;
    // The permission coach; `onButton` is its one button.
    virtual std::unique_ptr<PermissionCoachView>
    makePermissionCoach(std::function<void()> onButton) = 0;
};

} // namespace paneforge
