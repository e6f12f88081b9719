#include "app/shell/stand_in_controllers.h"

namespace paneforge {

void StandInController::called(const QString& entry, const QString& detail) const {
    QString line = type_ + QLatin1Char('.') + entry;
    if (!detail.isEmpty()) {
        line += QLatin1Char(' ') + detail;
    }
    if (log_) {
        log_(line + QStringLiteral(": not built yet"));
    }
}

} // namespace paneforge
