#pragma once

#include "app/input/event_tap_manager.h"
#include "app/ports/platform.h"
#include "app/ports/view_factory.h"
#include "app/runtime/notification_center.h"
#include "app/snapping/snap_controller.h"
#include "core/config/config_store.h"

#include <functional>
#include <memory>

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
    // Ends the event loop.
    std::function<void()> quit;
};

// Owns every feature controller for the life of the process and starts them in order.
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

private:
    void showStatusItem();
    void startSnapAndPermissions();
    PaneforgeConfig loadConfigOrDefault() const;

    ApplicationServices services_;
    EventTapManager eventTapManager_;
    std::unique_ptr<SnapController> snapController_;
    std::unique_ptr<StatusItemView> statusItem_;
};

} // namespace paneforge
