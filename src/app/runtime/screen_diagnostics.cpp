#include "app/runtime/screen_diagnostics.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"

namespace paneforge {

ScreenDiagnostics::ScreenDiagnostics(const ScreenListing& listing, DiagnosticLog log)
    : listing_(listing)
    , log_(std::move(log)) {}

void ScreenDiagnostics::logTopology(const QString& reason) const {
    const auto screens = listing_.screens();
    const double primaryMaxY = screens.empty() ? 0.0 : screens.front().frame.maxY();
    log_(QStringLiteral("ScreenDiagnostics.") + reason + QStringLiteral(" count=") +
         QString::number(screens.size()) + QStringLiteral(" primaryMaxY=") +
         SnapDiagnosticFormatter::formatDouble(primaryMaxY));
    logEachScreen();
}

void ScreenDiagnostics::logEachScreen() const {
    const auto screens = listing_.screens();
    for (size_t i = 0; i < screens.size(); ++i) {
        const ScreenInfo& s = screens[i];
        log_(SnapDiagnosticFormatter::formatScreen(static_cast<int>(i), s.name,
                                                   s.displayId.value_or(0), i == 0, s.scale,
                                                   s.frame, s.visibleFrame, s.topLeftBounds));
    }
}

std::optional<ScreenInfo> ScreenDiagnostics::screen(DesktopPoint point) const {
    for (const ScreenInfo& s : listing_.screens()) {
        if (s.frame.contains(point)) {
            return s;
        }
    }
    return std::nullopt;
}

} // namespace paneforge
