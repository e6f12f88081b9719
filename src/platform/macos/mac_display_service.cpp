#include "platform/macos/mac_display_service.h"

namespace paneforge {

std::vector<DisplayId> MacDisplayService::getActiveDisplays() {
    const auto [countError, count] = api_.activeDisplayCount();
    if (countError != 0) {
        logger_.error(QStringLiteral("Failed to get display count: %1").arg(countError));
    }
    const auto [listError, ids] = api_.activeDisplayList(count);
    if (listError != 0) {
        logger_.error(QStringLiteral("Failed to get displays: %1").arg(listError));
    }
    return ids;
}

DisplayIdentifier MacDisplayService::getIdentifier(DisplayId displayId) {
    const std::uint32_t serial = api_.serialNumber(displayId);
    return DisplayIdentifier(api_.vendorNumber(displayId), api_.modelNumber(displayId),
                             serial == 0 ? std::nullopt : std::optional<std::int64_t>(serial));
}

std::optional<PlatformScreen> MacDisplayService::screenFor(DisplayId displayId) {
    for (const PlatformScreen& screen : api_.screens()) {
        if (screen.number && *screen.number == displayId) {
            return screen;
        }
    }
    return std::nullopt;
}

std::optional<DesktopRect> MacDisplayService::getFrame(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    return screen ? std::optional(screen->frame) : std::nullopt;
}

std::optional<DesktopRect> MacDisplayService::getVisibleFrame(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    return screen ? std::optional(screen->visibleFrame) : std::nullopt;
}

std::optional<DisplayId> MacDisplayService::getDisplayId(DesktopPoint point) {
    for (const PlatformScreen& screen : api_.screens()) {
        if (screen.frame.contains(point)) {
            return screen.number; // a containing screen without a number gives none
        }
    }
    return std::nullopt;
}

double MacDisplayService::primaryMaxY() {
    const auto screens = api_.screens();
    return screens.empty() ? 0.0 : screens.front().frame.maxY();
}

std::vector<ScreenInfo> MacDisplayService::screens() const {
    std::vector<ScreenInfo> result;
    for (const PlatformScreen& screen : api_.screens()) {
        result.push_back({screen.localizedName.value_or(QString()), screen.number,
                          screen.backingScaleFactor, screen.frame, screen.visibleFrame,
                          screen.number ? api_.bounds(*screen.number) : DesktopRect()});
    }
    return result;
}

std::optional<RegistryDisplay>
MacDisplayService::findDisplayService(const DisplayIdentifier& identifier) {
    const auto entries = api_.registryDisplays();
    if (!entries) {
        return std::nullopt;
    }
    for (const RegistryDisplay& entry : *entries) {
        if (entry.vendorId != identifier.vendorId() || entry.productId != identifier.productId()) {
            continue;
        }
        if (identifier.serialNumber() && entry.serialNumber != identifier.serialNumber()) {
            continue;
        }
        return entry; // without a serial, the first of identical displays wins
    }
    return std::nullopt;
}

std::optional<QString> MacDisplayService::pickLocalizedName(const LocalizedNames& names,
                                                            const QString& localeIdentifier) {
    const auto lookup = [&](const QString& key) -> std::optional<QString> {
        for (const auto& [locale, name] : names) {
            if (locale == key) {
                return name;
            }
        }
        return std::nullopt;
    };
    const QStringList pieces = localeIdentifier.split(QLatin1Char('_'), Qt::SkipEmptyParts);
    if (!pieces.isEmpty()) {
        if (auto name = lookup(pieces.front())) {
            return name;
        }
        return lookup(localeIdentifier);
    }
    if (auto name = lookup(localeIdentifier)) {
        return name;
    }
    return names.empty() ? std::nullopt : std::optional(names.front().second);
}

std::optional<QString> MacDisplayService::registryProductName(const DisplayIdentifier& identifier) {
    const auto entry = findDisplayService(identifier);
    if (!entry) {
        return std::nullopt;
    }
    const auto names = api_.productNames(entry->handle);
    return names ? pickLocalizedName(*names, api_.currentLocaleIdentifier()) : std::nullopt;
}

std::optional<QString> MacDisplayService::getDisplayName(DisplayId displayId) {
    if (const auto screen = screenFor(displayId); screen && screen->localizedName) {
        return screen->localizedName;
    }
    return registryProductName(getIdentifier(displayId));
}

QString MacDisplayService::getDisplayTitle(DisplayId displayId) {
    return DisplayText::title(getDisplayName(displayId), getIdentifier(displayId),
                              api_.isBuiltin(displayId), api_.bounds(displayId));
}

std::vector<QString> MacDisplayService::getDisplaySummaries() {
    std::vector<QString> summaries;
    for (const DisplayId id : getActiveDisplays()) {
        summaries.push_back(DisplayText::summary(getIdentifier(id), api_.bounds(id)));
    }
    return summaries;
}

} // namespace paneforge
