#include "app/ports/display_services.h"

#include <cmath>

namespace paneforge {

namespace {
QString whole(double value) {
    return QString::number(static_cast<qint64>(std::trunc(value)));
}
} // namespace

QString DisplayText::title(const std::optional<QString>& name, const DisplayIdentifier& identifier,
                           bool builtIn, const DesktopRect& bounds) {
    QString title = name.value_or(identifier.stableId()) + QStringLiteral(" [") +
                    (builtIn ? QStringLiteral("Built-in") : QStringLiteral("External")) +
                    QStringLiteral("] (") + identifier.stableId() + QStringLiteral(") @ ") +
                    whole(bounds.width()) + QLatin1Char('x') + whole(bounds.height());
    if (!identifier.serialNumber()) {
        title += QStringLiteral(" @ ") + whole(bounds.x()) + QLatin1Char(',') + whole(bounds.y());
    }
    return title;
}

QString DisplayText::summary(const DisplayIdentifier& identifier, const DesktopRect& bounds) {
    return identifier.stableId() + QStringLiteral(" @ ") + whole(bounds.width()) +
           QLatin1Char('x') + whole(bounds.height());
}

} // namespace paneforge
