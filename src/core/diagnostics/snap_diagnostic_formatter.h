#pragma once

#include "core/geometry/desktop_geometry.h"

#include <QString>
#include <cstdint>
#include <optional>

namespace paneforge {

// The fixed textual forms of the diagnostic log. Tools read the log, so the forms never follow the
// process locale: the decimal separator is always a point.
namespace SnapDiagnosticFormatter {
// "(%.1f,%.1f)"
QString formatPoint(DesktopPoint point);
// "(%.1f,%.1f %.1fx%.1f)"
QString formatRect(const DesktopRect& rect);
// The shortest decimal form that reads back as the same double, always with a fraction or an
// exponent: "2.0", "1117.0", "0.25", "1e-05".
QString formatDouble(double value);
QString formatScreen(int index, const QString& name, std::uint32_t displayId, bool isPrimary,
                     double scale, const DesktopRect& cocoaFrame, const DesktopRect& visibleFrame,
                     const DesktopRect& quartzBounds);
QString formatSnapAttempt(DesktopPoint point, bool inFrame, bool inVisible,
                          std::optional<std::uint32_t> displayId, const QString& layoutId,
                          int cellCount, int selectionCount, const QString& requestedFrame);
} // namespace SnapDiagnosticFormatter

} // namespace paneforge
