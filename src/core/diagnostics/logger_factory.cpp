#include "core/diagnostics/logger_factory.h"

namespace paneforge {

Logger::Logger(const QString& category)
    : category_(category)
    , qtName_(
          std::make_shared<const QByteArray>((QStringLiteral("Paneforge.") + category).toUtf8())) {
    // QLoggingCategory keeps the name pointer, so the name lives as long as the category does.
    qtCategory_ = std::make_shared<const QLoggingCategory>(qtName_->constData());
}

void Logger::debug(const QString& message) const {
    qCDebug((*qtCategory_)).noquote() << message;
}

void Logger::info(const QString& message) const {
    qCInfo((*qtCategory_)).noquote() << message;
}

// Qt has no notice level; notices are informational.
void Logger::notice(const QString& message) const {
    qCInfo((*qtCategory_)).noquote() << message;
}

void Logger::error(const QString& message) const {
    qCCritical((*qtCategory_)).noquote() << message;
}

} // namespace paneforge
