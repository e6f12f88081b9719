#include "core/policies/update_policy.h"
#include "platform/macos/mac_shell_services.h"

#import <Foundation/Foundation.h>
#if PANEFORGE_HAS_SPARKLE
#import <Sparkle/Sparkle.h>
#endif

namespace paneforge {

// Manual reference counting, as in the rest of this layer: the controller holds one retain.
struct SparkleUpdateService::Controller {
#if PANEFORGE_HAS_SPARKLE
    explicit Controller(SPUStandardUpdaterController* updater)
        : updater(updater) {}
    ~Controller() {
        [updater release];
    }
    SPUStandardUpdaterController* updater;
#endif
};

SparkleUpdateService::SparkleUpdateService() = default;
SparkleUpdateService::~SparkleUpdateService() = default;

void SparkleUpdateService::start() {
#if PANEFORGE_HAS_SPARKLE
    if (!UpdaterLaunchPolicy::shouldStartUpdater(mainBundlePath())) {
        return;
    }
    // SPUStandardUpdaterController.h: -initWithStartingUpdater:updaterDelegate:userDriverDelegate:;
    // the framework schedules its own checks from the bundle's settings from here on.
    controller_ = std::make_unique<Controller>([[SPUStandardUpdaterController alloc]
        initWithStartingUpdater:YES
                updaterDelegate:nil
             userDriverDelegate:nil]);
#endif
}

bool SparkleUpdateService::checkForUpdates() {
#if PANEFORGE_HAS_SPARKLE
    if (controller_) {
        // SPUStandardUpdaterController.h: -checkForUpdates:, no sender.
        [controller_->updater checkForUpdates:nil];
        return true;
    }
#endif
    return false;
}

QString SparkleUpdateService::unavailableMessage() const {
    return UpdateMenuCopy::updaterUnavailableMessage;
}

} // namespace paneforge
