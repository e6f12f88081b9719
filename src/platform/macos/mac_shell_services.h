#pragma once

#include "app/ports/shell_services.h"

#include <memory>

namespace paneforge {

// Launch at login as the main application's login item (ServiceManagement, macOS 13), only for an
// application bundle: a build run from elsewhere never touches the login items.
class MacLoginItem final : public LoginItemService {
public:
    bool appliesToThisCopy() override;
    LoginItemStatus status() override;
    bool registerItem() override;
    bool unregisterItem() override;
};

// Sparkle's standard updater, started only inside an application bundle. Without the framework
// in the build, or outside a bundle, there is no updater and the menu row explains why.
class SparkleUpdateService final : public UpdateService {
public:
    SparkleUpdateService();
    ~SparkleUpdateService() override;
    SparkleUpdateService(const SparkleUpdateService&) = delete;
    SparkleUpdateService& operator=(const SparkleUpdateService&) = delete;

    void start() override;
    bool checkForUpdates() override;
    QString unavailableMessage() const override;

private:
    struct Controller;
    std::unique_ptr<Controller> controller_;
};

// Reveals a file in the Finder.
class FinderFileRevealer final : public FileRevealer {
public:
    void reveal(const QString& path) override;
};

// The running bundle's path, for the bundle rules.
QString mainBundlePath();

} // namespace paneforge
