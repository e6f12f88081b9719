#pragma once

#include "app/ports/display_services.h"
#include "app/runtime/screen_diagnostics.h"
#include "core/diagnostics/logger_factory.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace paneforge {

// One screen as AppKit lists it.
struct PlatformScreen {
    std::optional<std::uint32_t> number; // "NSScreenNumber", when readable
    DesktopRect frame;
    DesktopRect visibleFrame;
    std::optional<QString> localizedName;
    double backingScaleFactor = 1.0;
};

// One "IODisplayConnect" entry of the I/O registry; `handle` names it for productNames().
struct RegistryDisplay {
    std::uint64_t handle = 0;
    std::int64_t vendorId = -1;  // -1 when missing or not a number
    std::int64_t productId = -1; // -1 when missing or not a number
    std::optional<std::int64_t> serialNumber;
};

// Localized product names in the registry's own order: (locale identifier, name).
using LocalizedNames = std::vector<std::pair<QString, QString>>;

// The window server, AppKit and I/O registry calls the macOS display services need, one to one.
class DisplayApi {
public:
    virtual ~DisplayApi() = default;

    // CGGetActiveDisplayList with capacity 0: (error, count).
    virtual std::pair<std::int32_t, std::uint32_t> activeDisplayCount() = 0;
    // CGGetActiveDisplayList with a buffer of `capacity`: (error, the ids it reported).
    virtual std::pair<std::int32_t, std::vector<std::uint32_t>>
    activeDisplayList(std::uint32_t capacity) = 0;
    virtual std::uint32_t vendorNumber(std::uint32_t displayId) = 0;
    virtual std::uint32_t modelNumber(std::uint32_t displayId) = 0;
    virtual std::uint32_t serialNumber(std::uint32_t displayId) = 0;
    virtual DesktopRect bounds(std::uint32_t displayId) = 0;
    virtual bool isBuiltin(std::uint32_t displayId) = 0;
    virtual std::vector<PlatformScreen> screens() = 0;
    // None when the matching itself fails.
    virtual std::optional<std::vector<RegistryDisplay>> registryDisplays() = 0;
    // The "DisplayProductName" dictionary of an entry's info dictionary; none when absent or not a
    // dictionary (entries that are not string to string are already dropped).
    virtual std::optional<LocalizedNames> productNames(std::uint64_t handle) = 0;
    virtual QString currentLocaleIdentifier() = 0;
    virtual DesktopPoint mouseLocation() = 0;
};

// The macOS display services, written against DisplayApi so that they are tested anywhere.
class MacDisplayService final : public DisplayService,
                                public DisplayFrameService,
                                public ScreenListing {
public:
    MacDisplayService(DisplayApi& api, Logger logger)
        : api_(api)
        , logger_(std::move(logger)) {}

    std::vector<DisplayId> getActiveDisplays() override;
    DisplayIdentifier getIdentifier(DisplayId displayId) override;
    std::optional<QString> getDisplayName(DisplayId displayId) override;
    QString getDisplayTitle(DisplayId displayId) override;
    std::vector<QString> getDisplaySummaries() override;

    std::optional<DesktopRect> getFrame(DisplayId displayId) override;
    std::optional<DesktopRect> getVisibleFrame(DisplayId displayId) override;
    std::optional<DisplayId> getDisplayId(DesktopPoint point) override;
    DesktopPoint pointerLocation() override { return api_.mouseLocation(); }
    double primaryMaxY() override;

    // The screens for the diagnostic topology lines, in AppKit's order.
    std::vector<ScreenInfo> screens() const override;

    // The registry's product name for a display, in the user's language.
    std::optional<QString> registryProductName(const DisplayIdentifier& identifier);

    // The language's own name wins, then the whole locale's; with no language, the locale's, then
    // the first name. Deliberately no other fallback.
    static std::optional<QString> pickLocalizedName(const LocalizedNames& names,
                                                    const QString& localeIdentifier);

private:
    std::optional<PlatformScreen> screenFor(DisplayId displayId);
    std::optional<RegistryDisplay> findDisplayService(const DisplayIdentifier& identifier);

    DisplayApi& api_;
    Logger logger_;
};

} // namespace paneforge
