#pragma once

#include "platform/macos/mac_display_service.h"

#include <cstdint>
#include <vector>

namespace paneforge {

// Core Graphics, AppKit and I/O registry calls behind DisplayApi. The registry entries of the
// last registryDisplays() call stay retained so that productNames() can read them.
class MacDisplayApi final : public DisplayApi {
public:
    MacDisplayApi() = default;
    ~MacDisplayApi() override;
    MacDisplayApi(const MacDisplayApi&) = delete;
    MacDisplayApi& operator=(const MacDisplayApi&) = delete;

    std::pair<std::int32_t, std::uint32_t> activeDisplayCount() override;
    std::pair<std::int32_t, std::vector<std::uint32_t>>
    activeDisplayList(std::uint32_t capacity) override;
    std::uint32_t vendorNumber(std::uint32_t displayId) override;
    std::uint32_t modelNumber(std::uint32_t displayId) override;
    std::uint32_t serialNumber(std::uint32_t displayId) override;
    DesktopRect bounds(std::uint32_t displayId) override;
    bool isBuiltin(std::uint32_t displayId) override;
    std::vector<PlatformScreen> screens() override;
    std::optional<std::vector<RegistryDisplay>> registryDisplays() override;
    std::optional<LocalizedNames> productNames(std::uint64_t handle) override;
    QString currentLocaleIdentifier() override;
    DesktopPoint mouseLocation() override;

private:
    void releaseServices();
    std::vector<std::uint32_t> services_; // io_service_t handles, retained
};

} // namespace paneforge
