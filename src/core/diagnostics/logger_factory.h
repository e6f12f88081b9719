#pragma once

#include <QLoggingCategory>
#include <QString>
#include <memory>

namespace paneforge {

// A system-log channel of subsystem "Paneforge" with one category per component. Cheap to copy;
// the copies share one Qt logging category named "Paneforge.<category>" (on macOS Qt forwards it
// to the unified system log).
class Logger {
public:
    explicit Logger(const QString& category);

    QString subsystem() const { return QStringLiteral("Paneforge"); }
    QString category() const { return category_; }

    void debug(const QString& message) const;
    void info(const QString& message) const;
    void notice(const QString& message) const;
    void error(const QString& message) const;

private:
    QString category_;
    std::shared_ptr<const QByteArray> qtName_;
    std::shared_ptr<const QLoggingCategory> qtCategory_;
};

class LoggerFactory {
public:
    LoggerFactory() = delete;
    static Logger makeLogger(const QString& category) { return Logger(category); }
};

} // namespace paneforge
