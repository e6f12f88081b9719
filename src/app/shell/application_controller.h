#pragma once

#include "app/backup/settings_backup_controllers.h"
#include "app/editor/grid_editor_controller.h"
#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "app/input/hotkey_slots.h"
#include "app/onboarding/privacy_permission_gate.h"
#include "app/onboarding/quick_start_controller.h"
#include "app/ports/platform.h"
#include "app/ports/view_factory.h"
#include "app/preferences/preferences_controller.h"
#include "app/preferences/preferences_window_controller.h"
#include "app/runtime/config_file_watcher.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/process_command_runner.h"
#include "app/snapping/move_window_controller.h"
#include "app/snapping/snap_controller.h"
#include "app/switching/layout_selector_controller.h"
#include "core/config/config_store.h"
#include "core/diagnostics/logger_factory.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace paneforge {

// What the application is built from: the platform's services, the windows, the clock, the
// notifications and the diagnostic log, all owned by the composition root.
struct ApplicationServices {
    Platform& platform;
    ViewFactory& views;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    ConfigStore& configStore;
    std::function<void(const QString&)> fileLog;
    // The diagnostic log file, for "Reveal Log File".
    QString logFilePath;
    // Ends the event loop.
    std::function<void()> quit;
};

// Owns every feature controller for the life of the process, starts them in order, and then only
// reacts: the change notifications re-apply the configuration, the hot keys and the status menu
// call into the feature controllers. Every callback it hands out does nothing once it is gone.
class ApplicationController {
public:
    explicit ApplicationController(ApplicationServices services);
    ~ApplicationController();
    ApplicationController(const ApplicationController&) = delete;
    ApplicationController& operator=(const ApplicationController&) = delete;

    // Called once, when the event loop is about to run.
    void start();

    bool isStatusItemShown() const { return statusItem_ != nullptr; }
    bool isEventTapInstalled() const { return eventTapManager_.isTapInstalled(); }
    bool isQuickStartShown() const { return quickStart_.isShown(); }

private:
    void registerAllHotkeys();
    void registerHotkey(const HotkeySlot& slot);
    std::function<void()> hotkeyAction(HotkeySlotId slot);
    void handleOpenEditorHotkey();
    void observeHotkeyChanges();
    void configChanged();

    void applyStatusItemSetting();
    void showStatusItem();
    void hideStatusItem();
    StatusMenuActions statusMenuActions();
    void showPreferencesWindow();
    // While a hot key is being recorded in the preferences, the global hot keys let go of the
    // keyboard; afterwards they are registered again from the file.
    void pauseHotkeysWhileRecording(bool recording);
    void checkForUpdates();
    void revealLogFile();

    void syncLaunchAtLoginPreferenceWithSystem();
    void applyLaunchAtLogin();

    void startSnapAndPermissions();
    void watchConfigFile();
    PaneforgeConfig loadConfigOrDefault() const;
    LayoutSwitchServices layoutSwitchServices();
    void log(const QString& line) const;
    // Wraps `action` so that it runs only while this controller exists.
    std::function<void()> guarded(std::function<void()> action) const;

    ApplicationServices services_;
    Logger systemLog_;
    GridEditorController zoneEditor_;
    LayoutSelectorController layoutSelector_;
    BackupSettingsController backupSettings_;
    RestoreSettingsController restoreSettings_;
    MoveWindowController moveWindow_;
    LayoutCycleHUDController layoutCycleHUD_;
    LayoutCycleController layoutCycle_;
    QuickStartController quickStart_;
    PreferencesController preferences_;
    std::unique_ptr<PreferencesWindowController> preferencesWindow_;
    std::unique_ptr<ShellWindow> aboutWindow_;
    std::unique_ptr<StatusItemView> statusItem_;
    HotkeyManager hotkeyManager_;
    EventTapManager eventTapManager_;
    std::unique_ptr<SnapController> snapController_;
    ProcessCommandRunner commandRunner_;
    PrivacyPermissionGate permissionGate_;
    // None until launch at login was first applied.
    std::optional<bool> lastAppliedLaunchAtLogin_;
    bool hotkeysPaused_ = false;
    std::vector<NotificationCenter::ObservationToken> observations_;
    std::unique_ptr<ConfigFileWatcher> configFileWatcher_;
    std::shared_ptr<ApplicationController*> self_;
};

} // namespace paneforge
