#include "core/diagnostics/snap_diagnostic_formatter.h"

#include <charconv>
#include <cmath>

namespace paneforge {

namespace {
// "%.1f" as printf writes it in the C locale, whatever the process locale says: the log is read by
// tools, so the decimal separator is always a point. A double's fixed form needs at most 309
// digits before the point.
QString oneDecimal(double value) {
    char buffer[328];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 1);
    if (result.ec != std::errc()) {
        return QStringLiteral("nan");
    }
    return QString::fromLatin1(buffer, static_cast<qsizetype>(result.ptr - buffer));
}

QString boolText(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
} // namespace

QString SnapDiagnosticFormatter::formatPoint(DesktopPoint point) {
    return QLatin1Char('(') + oneDecimal(point.x) + QLatin1Char(',') + oneDecimal(point.y) +
           QLatin1Char(')');
}

QString SnapDiagnosticFormatter::formatRect(const DesktopRect& rect) {
    return QLatin1Char('(') + oneDecimal(rect.x()) + QLatin1Char(',') + oneDecimal(rect.y()) +
           QLatin1Char(' ') + oneDecimal(rect.width()) + QLatin1Char('x') +
           oneDecimal(rect.height()) + QLatin1Char(')');
}

QString SnapDiagnosticFormatter::formatDouble(double value) {
    if (std::isnan(value)) {
        return QStringLiteral("nan");
    }
    if (std::isinf(value)) {
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    }
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    QString text = QString::fromLatin1(buffer, static_cast<qsizetype>(result.ptr - buffer));
    if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char('e'))) {
        text += QStringLiteral(".0");
    }
    return text;
}

QString SnapDiagnosticFormatter::formatScreen(int index, const QString& name,
                                              std::uint32_t displayId, bool isPrimary, double scale,
                                              const DesktopRect& cocoaFrame,
                                              const DesktopRect& visibleFrame,
                                              const DesktopRect& quartzBounds) {
    return QLatin1Char('[') + QString::number(index) + QStringLiteral("] ") + name +
           QStringLiteral(" id=") + QString::number(displayId) + QLatin1Char(' ') +
           (isPrimary ? QStringLiteral("primary") : QStringLiteral("secondary")) +
           QStringLiteral(" scale=") + formatDouble(scale) + QStringLiteral(" cocoa=") +
           formatRect(cocoaFrame) + QStringLiteral(" visible=") + formatRect(visibleFrame) +
           QStringLiteral(" quartz=") + formatRect(quartzBounds);
}

QString SnapDiagnosticFormatter::formatSnapAttempt(DesktopPoint point, bool inFrame, bool inVisible,
                                                   std::optional<std::uint32_t> displayId,
                                                   const QString& layoutId, int cellCount,
                                                   int selectionCount,
                                                   const QString& requestedFrame) {
    return QStringLiteral("point=") + formatPoint(point) + QStringLiteral(" inFrame=") +
           boolText(inFrame) + QStringLiteral(" inVisible=") + boolText(inVisible) +
           QStringLiteral(" displayId=") +
           (displayId ? QString::number(*displayId) : QStringLiteral("nil")) +
           QStringLiteral(" layout=") + layoutId + QStringLiteral(" cells=") +
           QString::number(cellCount) + QStringLiteral(" selected=") +
           QString::number(selectionCount) + QStringLiteral(" requested=") + requestedFrame;
}

} // namespace paneforge
