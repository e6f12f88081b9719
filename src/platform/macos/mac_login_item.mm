#include "core/policies/update_policy.h"
#include "platform/macos/mac_shell_services.h"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

namespace paneforge {

QString mainBundlePath() {
    // NSBundle.h: +mainBundle, bundlePath.
    return QString::fromNSString(NSBundle.mainBundle.bundlePath);
}

bool MacLoginItem::appliesToThisCopy() {
    // The same rule as the updater's: the bundle's extension, in any case, is "app".
    if (@available(macOS 13.0, *)) {
        return UpdaterLaunchPolicy::shouldStartUpdater(mainBundlePath());
    }
    return false;
}

LoginItemStatus MacLoginItem::status() {
    if (@available(macOS 13.0, *)) {
        // SMAppService.h: +mainAppService (mainApp in Swift), status (SMAppServiceStatus).
        switch (SMAppService.mainAppService.status) {
        case SMAppServiceStatusNotRegistered:
            return LoginItemStatus::NotRegistered;
        case SMAppServiceStatusEnabled:
            return LoginItemStatus::Enabled;
        case SMAppServiceStatusRequiresApproval:
            return LoginItemStatus::RequiresApproval;
        case SMAppServiceStatusNotFound:
            return LoginItemStatus::NotFound;
        }
    }
    return LoginItemStatus::NotFound;
}

bool MacLoginItem::registerItem() {
    if (@available(macOS 13.0, *)) {
        // SMAppService.h: -registerAndReturnError:; the error is not reported, only the outcome.
        return [SMAppService.mainAppService registerAndReturnError:nil];
    }
    return false;
}

bool MacLoginItem::unregisterItem() {
    if (@available(macOS 13.0, *)) {
        // SMAppService.h: -unregisterAndReturnError:.
        return [SMAppService.mainAppService unregisterAndReturnError:nil];
    }
    return false;
}

} // namespace paneforge
