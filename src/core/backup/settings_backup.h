#pragma once

#include "core/config/paneforge_config.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QTimeZone>
#include <cstdint>
#include <stdexcept>

namespace paneforge {

namespace SettingsBackupFormat {
inline const QString name = QStringLiteral("paneforge-backup");
inline constexpr std::int64_t version = 1;
// Backups are untrusted input; anything larger is refused before it is parsed. Real backups are
// a few kilobytes, and even 50 displays with 40 layouts each stay under 600 kB.
inline constexpr qint64 maxFileSizeBytes = 16 * 1024 * 1024;
} // namespace SettingsBackupFormat

// The envelope around a configuration in a backup file.
struct SettingsBackupDocument {
    QString format;
    std::int64_t formatVersion = 0;
    QDateTime exportedAt; // UTC, whole seconds
    QString appVersion;
    PaneforgeConfig config;

    friend bool operator==(const SettingsBackupDocument&, const SettingsBackupDocument&) = default;
};

// The file is not JSON, or not shaped like a backup document. The message names the problem.
class SettingsBackupDecodingError : public std::runtime_error {
public:
    explicit SettingsBackupDecodingError(const QString& message)
        : std::runtime_error(message.toStdString())
        , message_(message) {}
    QString message() const { return message_; }

private:
    QString message_;
};

enum class SettingsBackupRestoreError { InvalidFormat, UnsupportedVersion };

// A well-formed document that is not a backup Paneforge can restore.
class SettingsBackupRestoreException : public std::runtime_error {
public:
    explicit SettingsBackupRestoreException(SettingsBackupRestoreError error);
    SettingsBackupRestoreError error() const { return error_; }
    // "This file is not a Paneforge backup." / "This backup format is not supported."
    static QString description(SettingsBackupRestoreError error);

private:
    SettingsBackupRestoreError error_;
};

namespace SettingsBackupEncoder {
SettingsBackupDocument makeDocument(const PaneforgeConfig& config, const QDateTime& exportedAt,
                                    const QString& appVersion);
// Written with the configuration's own printer, so a backup reads like the configuration file.
QByteArray encode(const PaneforgeConfig& config, const QDateTime& exportedAt,
                  const QString& appVersion);
QByteArray encode(const SettingsBackupDocument& document);
} // namespace SettingsBackupEncoder

namespace SettingsBackupDecoder {
// Decodes without looking at the envelope's values; throws SettingsBackupDecodingError. Oversized
// and absurdly nested data is refused before it is parsed.
SettingsBackupDocument decode(const QByteArray& data);
} // namespace SettingsBackupDecoder

namespace SettingsBackupRestore {
// Decodes and checks the envelope: SettingsBackupDecodingError for what is not a backup document
// at all, SettingsBackupRestoreException for a foreign format or an unsupported version.
SettingsBackupDocument document(const QByteArray& data);
PaneforgeConfig liveConfig(const QByteArray& data);
} // namespace SettingsBackupRestore

namespace SettingsBackupFilename {
// "Paneforge-backup-yyyy-MM-dd.json" for the date in the given time zone.
QString suggested(const QDateTime& date, const QTimeZone& timeZone);
} // namespace SettingsBackupFilename

// ISO 8601 in UTC with whole seconds ("2025-03-14T09:26:53Z").
QString formatBackupDate(const QDateTime& date);
// Accepts "Z" or a numeric offset; a fraction of a second is refused. None when invalid.
std::optional<QDateTime> parseBackupDate(const QString& text);

} // namespace paneforge
