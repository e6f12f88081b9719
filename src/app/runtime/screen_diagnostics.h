#pragma once

#include "core/diagnostics/diagnostic_log.h"
#include "core/geometry/desktop_geometry.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace paneforge {

// One screen as the platform lists it, in the platform's order (the primary screen first).
struct ScreenInfo {
    QString name;
    std::optional<std::uint32_t> displayId;
    double scale = 1.0;
    DesktopRect frame;         // desktop space
    DesktopRect visibleFrame;  // desktop space, without docks, panels and menu bar
    DesktopRect topLeftBounds; // the window system's own bounds, origin top-left, y down
};

// Lists the attached screens; implemented by the native display layers, faked in tests.
class ScreenListing {
public:
    virtual ~ScreenListing() = default;
    virtual std::vector<ScreenInfo> screens() const = 0;
};

// Writes the screen topology to the diagnostic log at start-up and when a snap starts.
class ScreenDiagnostics {
public:
    ScreenDiagnostics(const ScreenListing& listing, DiagnosticLog log);

    // "ScreenDiagnostics.<reason> count=<n> primaryMaxY=<top of the first screen>", then one
    // line per screen.
    void logTopology(const QString& reason) const;
    void logEachScreen() const;

    // The first screen whose frame contains the point (half-open), or none.
    std::optional<ScreenInfo> screen(DesktopPoint point) const;
    static std::optional<std::uint32_t> displayId(const ScreenInfo& screen) {
        return screen.displayId;
    }

private:
    const ScreenListing& listing_;
    DiagnosticLog log_;
};

} // namespace paneforge
