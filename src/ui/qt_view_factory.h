#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/view_factory.h"
#include "ui/grid_editor_window.h"
#include "ui/layout_switch_views.h"
#include "ui/qt_alert_presenter.h"
#include "ui/qt_backup_views.h"
#include "ui/qt_key_down_monitor.h"
#include "ui/snap_overlay_window.h"

#include <functional>

namespace paneforge {

// The agent's windows, in Qt Widgets, with the platform's native touches.
class QtViewFactory final : public ViewFactory {
public:
    QtViewFactory(NativeWindows& nativeWindows, std::function<void(const QString&)> fileLog);

    SnapOverlayFactory& snapOverlays() override { return snapOverlays_; }
    GridEditorWindowFactory& gridEditors() override { return gridEditors_; }
    std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) override;
    std::unique_ptr<ShellWindow> makeAboutWindow() override;
    std::unique_ptr<PreferencesView> makePreferencesView(PreferencesFormEvents& events) override;
    AlertPresenter& alerts() override { return alerts_; }
    LayoutSwitchViews& layoutSwitchViews() override { return layoutSwitchViews_; }
    BackupViews& backupViews() override { return backupViews_; }
    KeyDownMonitorApi& keyDownMonitor() override { return keyDownMonitor_; }
    std::optional<QString> keyWindowTitle() override;
    std::unique_ptr<QuickStartView> makeQuickStartWindow(QuickStartActions actions) override;
    std::unique_ptr<PermissionCoachView>
    makePermissionCoach(std::function<void()> onButton) override;

private:
    NativeWindows& nativeWindows_;
    std::function<void(const QString&)> fileLog_;
    QtSnapOverlayFactory snapOverlays_;
    QtGridEditorWindowFactory gridEditors_;
    QtAlertPresenter alerts_;
    QtKeyDownMonitor keyDownMonitor_;
    QtLayoutSwitchViews layoutSwitchViews_{nativeWindows_};
    QtBackupViews backupViews_{nativeWindows_};
};

} // namespace paneforge
