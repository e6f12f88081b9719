#include "app/shell/application_controller.h"

#include "app/runtime/screen_diagnostics.h"
#include "core/policies/launch_at_login_sync.h"
#include "core/policies/quick_start_guide.h"
#include "core/policies/update_policy.h"

namespace paneforge {

ApplicationController::ApplicationController(ApplicationServices services)
    : services_(std::move(services))
    , systemLog_(LoggerFactory::makeLogger(QStringLiteral("ApplicationController")))
    , zoneEditor_(GridEditorServices{services_.configStore, services_.platform.displays(),
                                     services_.platform.displayFrames(),
                                     services_.views.gridEditors(), services_.views.alerts(),
                                     services_.scheduler, services_.fileLog})
    , layoutSelector_(layoutSwitchServices())
    , backupSettings_(
          services_.configStore, services_.views.backupViews(), QStringLiteral(PANEFORGE_VERSION),
          [] { return QDateTime::currentDateTime(); }, services_.fileLog)
    , restoreSettings_(services_.configStore, services_.views.backupViews(),
                       services_.notifications, services_.fileLog)
    , moveWindow_(services_.platform.windows(), services_.platform.displayFrames(),
                  services_.platform.displays())
    , layoutCycleHUD_(services_.views.layoutSwitchViews(), services_.scheduler)
    , layoutCycle_(layoutSwitchServices(), layoutCycleHUD_)
    , quickStart_(
          [this](QuickStartActions actions) {
              return services_.views.makeQuickStartWindow(std::move(actions));
          },
          // The guide lives and dies with this controller.
          [this] { zoneEditor_.showEditorForMainDisplay(); },
          [this] { preferences_.setHasCompletedQuickStart(true); })
    , preferences_(services_.configStore, services_.notifications)
    , aboutWindow_(services_.views.makeAboutWindow())
    , hotkeyManager_(services_.platform.hotkeys(), services_.scheduler, services_.fileLog)
    , eventTapManager_(services_.platform.eventTaps(), services_.scheduler, services_.notifications)
    , permissionGate_(PrivacyPermissionGateServices{
          services_.platform.windows(), services_.platform.permissions(), commandRunner_,
          services_.scheduler, services_.notifications,
          [this] { return eventTapManager_.isTapInstalled(); },
          [this](std::function<void()> onButton) {
              return services_.views.makePermissionCoach(std::move(onButton));
          },
          services_.fileLog})
    , self_(std::make_shared<ApplicationController*>(this)) {
    preferencesWindow_ = std::make_unique<PreferencesWindowController>(PreferencesWindowServices{
        preferences_, services_.views, services_.platform.keyboardLayout(),
        services_.platform.keyTranslator(), services_.platform.loginItems(), services_.fileLog,
        [weak = std::weak_ptr<ApplicationController*>(self_)](bool recording) {
            if (const auto self = weak.lock()) {
                (*self)->pauseHotkeysWhileRecording(recording);
            }
        }});
}

ApplicationController::~ApplicationController() = default;

std::function<void()> ApplicationController::guarded(std::function<void()> action) const {
    return [weak = std::weak_ptr<ApplicationController*>(self_), action = std::move(action)] {
        if (weak.lock()) {
            action();
        }
    };
}

void ApplicationController::log(const QString& line) const {
    systemLog_.info(line);
    if (services_.fileLog) {
        services_.fileLog(line);
    }
}

LayoutSwitchServices ApplicationController::layoutSwitchServices() {
    return {services_.configStore, services_.platform.displays(),
            services_.platform.displayFrames(), services_.views.layoutSwitchViews(),
            services_.fileLog};
}

PaneforgeConfig ApplicationController::loadConfigOrDefault() const {
    try {
        return services_.configStore.loadConfig();
    } catch (const std::exception&) {
        return PaneforgeConfig::makeDefault();
    }
}

void ApplicationController::start() {
    services_.fileLog(QStringLiteral("ApplicationController.start"));
    ScreenDiagnostics(services_.platform.screens(), services_.fileLog)
        .logTopology(QStringLiteral("appStart"));
    syncLaunchAtLoginPreferenceWithSystem();
    applyStatusItemSetting();
    registerAllHotkeys();
    observeHotkeyChanges();
    watchConfigFile();
    applyLaunchAtLogin();
    startSnapAndPermissions();
    services_.platform.updater().start();
}

// A hand edit or a restore from the command line reaches the running agent as a change
// notification, like a change made in its own windows.
void ApplicationController::watchConfigFile() {
    try {
        configFileWatcher_ = std::make_unique<ConfigFileWatcher>(
            services_.configStore.getConfigPath(), services_.scheduler, services_.notifications);
    } catch (const ConfigStoreError& error) {
        log(QStringLiteral("ApplicationController.watchConfigFile failed: ") + error.message());
    }
}

// Hot keys

void ApplicationController::registerAllHotkeys() {
    for (const HotkeySlot& slot : hotkeySlots()) {
        registerHotkey(slot);
    }
}

void ApplicationController::registerHotkey(const HotkeySlot& slot) {
    if (hotkeysPaused_) {
        return; // registered again from the file when the recording ends
    }
    // Read afresh every time: the file is the only truth, never a notification's payload.
    const auto hotkey = slot.read(loadConfigOrDefault());
    if (!hotkey) {
        if (!slot.logName.isEmpty()) {
            log(slot.logName + QStringLiteral(" hotkey: nil -> unregister"));
        }
        hotkeyManager_.unregister(slot.id());
        return;
    }
    if (!slot.logName.isEmpty()) {
        log(slot.logName + QStringLiteral(" hotkey: keyCode=%1 modifiers=%2")
                               .arg(hotkey->keyCode)
                               .arg(hotkey->modifiers));
    }
    hotkeyManager_.registerHotkey(slot.id(), *hotkey, hotkeyAction(slot.slot));
}

std::function<void()> ApplicationController::hotkeyAction(HotkeySlotId slot) {
    switch (slot) {
    case HotkeySlotId::OpenEditor:
        return guarded([this] { handleOpenEditorHotkey(); });
    case HotkeySlotId::OpenPreferences:
        return guarded([this] { showPreferencesWindow(); });
    case HotkeySlotId::OpenLayoutSelector:
        return guarded([this] { layoutSelector_.showForPointerDisplay(); });
    case HotkeySlotId::MoveToNextDisplay:
        return guarded([this] { moveWindow_.moveFrontmostWindowToNextDisplay(); });
    case HotkeySlotId::NextLayout:
        return guarded([this] { layoutCycle_.cycleNext(); });
    case HotkeySlotId::PreviousLayout:
        return guarded([this] { layoutCycle_.cyclePrevious(); });
    }
    return {};
}

void ApplicationController::handleOpenEditorHotkey() {
    log(QStringLiteral("ApplicationController.handleOpenEditorHotkey"));
    // The user may be recording a hot key in the preferences: no editor over them.
    if (preferencesWindow_ && preferencesWindow_->isVisible()) {
        return;
    }
    zoneEditor_.showEditorForMainDisplay();
}

void ApplicationController::observeHotkeyChanges() {
    for (const HotkeySlot& slot : hotkeySlots()) {
        observations_.push_back(services_.notifications.observe(
            slot.changed, guarded([this, &slot] { registerHotkey(slot); })));
    }
    observations_.push_back(services_.notifications.observe(Notification::ConfigChanged,
                                                            guarded([this] { configChanged(); })));
}

void ApplicationController::configChanged() {
    applyStatusItemSetting();
    applyLaunchAtLogin();
    registerAllHotkeys();
}

// Status item and the windows behind its rows

void ApplicationController::applyStatusItemSetting() {
    if (loadConfigOrDefault().hideMenuBarIcon().value_or(false)) {
        hideStatusItem();
    } else {
        showStatusItem();
    }
}

void ApplicationController::showStatusItem() {
    if (statusItem_) {
        return;
    }
    statusItem_ = services_.views.makeStatusItem(statusMenuActions());
    statusItem_->show();
}

void ApplicationController::hideStatusItem() {
    statusItem_.reset();
}

StatusMenuActions ApplicationController::statusMenuActions() {
    StatusMenuActions actions;
    actions.openLayoutSelector = guarded([this] { layoutSelector_.showForPointerDisplay(); });
    actions.nextLayout = guarded([this] { layoutCycle_.cycleNext(); });
    actions.previousLayout = guarded([this] { layoutCycle_.cyclePrevious(); });
    actions.moveToNextDisplay = guarded([this] { moveWindow_.moveFrontmostWindowToNextDisplay(); });
    actions.displays = [weak = std::weak_ptr<ApplicationController*>(self_)] {
        std::vector<StatusMenuDisplay> displays;
        if (const auto self = weak.lock()) {
            DisplayService& service = (*self)->services_.platform.displays();
            for (const DisplayId id : service.getActiveDisplays()) {
                displays.push_back({id, service.getDisplayTitle(id), service.getIdentifier(id)});
            }
        }
        return displays;
    };
    actions.openZoneEditorForDisplay =
        [weak = std::weak_ptr<ApplicationController*>(self_)](DisplayId displayId) {
            if (const auto self = weak.lock()) {
                (*self)->zoneEditor_.showEditor(displayId);
            }
        };
    actions.openPreferences = guarded([this] { showPreferencesWindow(); });
    actions.backupSettings = guarded([this] { backupSettings_.runBackup(); });
    actions.restoreSettings = guarded([this] { restoreSettings_.runRestore(); });
    actions.openQuickStart = guarded([this] { quickStart_.show(); });
    actions.revealLogFile = guarded([this] { revealLogFile(); });
    actions.checkForUpdates = guarded([this] { checkForUpdates(); });
    actions.openAbout = guarded([this] { aboutWindow_->show(); });
    actions.quit = guarded([this] { services_.quit(); });
    return actions;
}

void ApplicationController::showPreferencesWindow() {
    preferencesWindow_->show();
}

void ApplicationController::pauseHotkeysWhileRecording(bool recording) {
    if (hotkeysPaused_ == recording) {
        return;
    }
    hotkeysPaused_ = recording;
    log(QStringLiteral("ApplicationController.pauseHotkeysWhileRecording recording=") +
        (recording ? QStringLiteral("true") : QStringLiteral("false")));
    if (recording) {
        hotkeyManager_.unregisterAll();
    } else {
        registerAllHotkeys();
    }
}

void ApplicationController::checkForUpdates() {
    UpdateService& updater = services_.platform.updater();
    if (!updater.checkForUpdates()) {
        services_.views.alerts().showInformational(UpdateMenuCopy::updaterUnavailableTitle,
                                                   updater.unavailableMessage());
    }
}

void ApplicationController::revealLogFile() {
    services_.fileLog(QStringLiteral("ApplicationController.revealLogFile path=") +
                      services_.logFilePath);
    services_.platform.fileRevealer().reveal(services_.logFilePath);
}

// Launch at login

void ApplicationController::syncLaunchAtLoginPreferenceWithSystem() {
    LoginItemService& loginItems = services_.platform.loginItems();
    if (!loginItems.appliesToThisCopy()) {
        return;
    }
    const PaneforgeConfig config = loadConfigOrDefault();
    const auto sync = LaunchAtLoginSyncHelper::computeSync(config.launchAtLogin().value_or(false),
                                                           isRegistered(loginItems.status()));
    if (!sync.shouldUpdatePreference) {
        return;
    }
    try {
        services_.configStore.saveConfig(config.withLaunchAtLogin(sync.updatedValue));
    } catch (const std::exception&) {
        // The store logs its own failures; the system's state is applied all the same.
    }
    lastAppliedLaunchAtLogin_ = sync.updatedValue;
}

void ApplicationController::applyLaunchAtLogin() {
    LoginItemService& loginItems = services_.platform.loginItems();
    if (!loginItems.appliesToThisCopy()) {
        return;
    }
    const bool desired = loadConfigOrDefault().launchAtLogin().value_or(false);
    if (lastAppliedLaunchAtLogin_ == desired) {
        return;
    }
    // Remembered even when the system refuses, so that a failure is not retried on every change
    // of another setting.
    lastAppliedLaunchAtLogin_ = desired;
    const bool registered = isRegistered(loginItems.status());
    if (desired && !registered) {
        loginItems.registerItem();
    } else if (!desired && registered) {
        loginItems.unregisterItem();
    }
}

// Snapping

void ApplicationController::startSnapAndPermissions() {
    Platform& platform = services_.platform;
    ViewFactory& views = services_.views;
    snapController_ = std::make_unique<SnapController>(SnapControllerServices{
        services_.configStore, platform.displays(), platform.displayFrames(), platform.screens(),
        platform.windows(), eventTapManager_, views.snapOverlays(), services_.scheduler,
        [&views] { return views.keyWindowTitle(); }, services_.fileLog});
    snapController_->start();
    ScreenDiagnostics(platform.screens(), services_.fileLog)
        .logTopology(QStringLiteral("snapStart"));
    // Once both permissions work: the quick start, for a configuration that says it was never
    // completed. One written before the guide existed (no value) shows nothing.
    permissionGate_.setOnReady(guarded([this] {
        const bool showGuide =
            QuickStartPolicy::shouldAutoPresent(loadConfigOrDefault().hasCompletedQuickStart());
        services_.fileLog(QStringLiteral("ApplicationController.permissionsReady quickStart=") +
                          (showGuide ? QStringLiteral("true") : QStringLiteral("false")));
        if (showGuide) {
            quickStart_.show();
        }
    }));
    permissionGate_.startWatchdog();
    permissionGate_.handleWatchdogTick();
}

} // namespace paneforge
