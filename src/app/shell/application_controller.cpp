#include "app/shell/application_controller.h"

#include "app/runtime/screen_diagnostics.h"

namespace paneforge {

ApplicationController::ApplicationController(ApplicationServices services)
    : services_(std::move(services))
    , eventTapManager_(services_.platform.eventTaps(), services_.scheduler,
                       services_.notifications) {}

ApplicationController::~ApplicationController() = default;

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
    if (!loadConfigOrDefault().hideMenuBarIcon().value_or(false)) {
        showStatusItem();
    }
    startSnapAndPermissions();
}

void ApplicationController::showStatusItem() {
    if (statusItem_) {
        return;
    }
    statusItem_ = services_.views.makeStatusItem(StatusMenuActions{services_.quit});
    statusItem_->show();
}

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
    // Moving other applications' windows needs the user's consent on macOS (Accessibility).
    if (!platform.windows().isTrusted()) {
        platform.windows().requestTrustPrompt();
    }
}

} // namespace paneforge
