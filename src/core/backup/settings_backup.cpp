#include "core/backup/settings_backup.h"

#include "core/config/json_decoding.h"
#include "core/config/pretty_json.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QRegularExpression>

namespace paneforge {

SettingsBackupRestoreException::SettingsBackupRestoreException(SettingsBackupRestoreError error)
    : std::runtime_error(description(error).toStdString())
    , error_(error) {}

QString SettingsBackupRestoreException::description(SettingsBackupRestoreError error) {
    switch (error) {
    case SettingsBackupRestoreError::InvalidFormat:
        return QStringLiteral("This file is not a Paneforge backup.");
    case SettingsBackupRestoreError::UnsupportedVersion:
        return QStringLiteral("This backup format is not supported.");
    }
    return {};
}

QString formatBackupDate(const QDateTime& date) {
    return date.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + QLatin1Char('Z');
}

std::optional<QDateTime> parseBackupDate(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral(
        R"(^(\d{4})-(\d{2})-(\d{2})T(\d{2}):(\d{2}):(\d{2})(Z|([+-])(\d{2}):?(\d{2}))$)"));
    const auto match = pattern.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toInt());
    const QTime time(match.captured(4).toInt(), match.captured(5).toInt(),
                     match.captured(6).toInt());
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    int offsetSeconds = 0;
    if (match.captured(7) != QLatin1String("Z")) {
        const int hours = match.captured(9).toInt();
        const int minutes = match.captured(10).toInt();
        if (hours > 23 || minutes > 59) {
            return std::nullopt;
        }
        offsetSeconds =
            (hours * 3600 + minutes * 60) * (match.captured(8) == QLatin1String("-") ? -1 : 1);
    }
    return QDateTime(date, time, QTimeZone(offsetSeconds)).toUTC();
}

SettingsBackupDocument SettingsBackupEncoder::makeDocument(const PaneforgeConfig& config,
                                                           const QDateTime& exportedAt,
                                                           const QString& appVersion) {
    return {SettingsBackupFormat::name, SettingsBackupFormat::version, exportedAt.toUTC(),
            appVersion, config};
}

QByteArray SettingsBackupEncoder::encode(const PaneforgeConfig& config, const QDateTime& exportedAt,
                                         const QString& appVersion) {
    return encode(makeDocument(config, exportedAt, appVersion));
}

QByteArray SettingsBackupEncoder::encode(const SettingsBackupDocument& document) {
    const QJsonObject object{
        {QStringLiteral("format"), document.format},
        {QStringLiteral("formatVersion"), static_cast<qint64>(document.formatVersion)},
        {QStringLiteral("exportedAt"), formatBackupDate(document.exportedAt)},
        {QStringLiteral("appVersion"), document.appVersion},
        {QStringLiteral("config"), document.config.toJson()}};
    return PrettyJSON::writeValue(object, 0).toUtf8();
}

SettingsBackupDocument SettingsBackupDecoder::decode(const QByteArray& data) {
    if (data.size() > SettingsBackupFormat::maxFileSizeBytes) {
        throw SettingsBackupDecodingError(
            QStringLiteral("The file is too large to be a Paneforge backup (more than %1 MB).")
                .arg(SettingsBackupFormat::maxFileSizeBytes / (1024 * 1024)));
    }
    if (const auto excess = json::excessiveStructure(data)) {
        throw SettingsBackupDecodingError(
            QStringLiteral("The file is too complex to be a Paneforge backup (%1, at byte %2).")
                .arg(excess->describe({}))
                .arg(excess->offset));
    }
    QJsonParseError parseError{};
    const QJsonDocument json = QJsonDocument::fromJson(data, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        throw SettingsBackupDecodingError(
            QStringLiteral("The file isn’t valid JSON (%1 at byte %2).")
                .arg(parseError.errorString())
                .arg(parseError.offset));
    }
    try {
        const JsonObjectReader reader(
            json.isObject() ? QJsonValue(json.object()) : QJsonValue(json.array()), QString());
        QString format = reader.requireString(QStringLiteral("format"));
        const auto formatVersion = reader.requireInt(QStringLiteral("formatVersion"));
        const QString exportedText = reader.requireString(QStringLiteral("exportedAt"));
        const auto exportedAt = parseBackupDate(exportedText);
        if (!exportedAt) {
            throw JsonDecodingError(
                JsonDecodingError::Kind::DataCorrupted, QStringLiteral("exportedAt"),
                QStringLiteral("“%1” is not an ISO 8601 date with whole seconds")
                    .arg(exportedText));
        }
        QString appVersion = reader.requireString(QStringLiteral("appVersion"));
        PaneforgeConfig config = PaneforgeConfig::fromJson(
            reader.requireValue(QStringLiteral("config")), QStringLiteral("config"));
        return {std::move(format), formatVersion, *exportedAt, std::move(appVersion),
                std::move(config)};
    } catch (const JsonDecodingError& error) {
        throw SettingsBackupDecodingError(
            QStringLiteral("The file isn’t a Paneforge backup document (%1).")
                .arg(error.message()));
    }
}

SettingsBackupDocument SettingsBackupRestore::document(const QByteArray& data) {
    SettingsBackupDocument document = SettingsBackupDecoder::decode(data);
    if (document.format != SettingsBackupFormat::name) {
        throw SettingsBackupRestoreException(SettingsBackupRestoreError::InvalidFormat);
    }
    if (document.formatVersion != SettingsBackupFormat::version) {
        throw SettingsBackupRestoreException(SettingsBackupRestoreError::UnsupportedVersion);
    }
    return document;
}

PaneforgeConfig SettingsBackupRestore::liveConfig(const QByteArray& data) {
    return document(data).config;
}

QString SettingsBackupFilename::suggested(const QDateTime& date, const QTimeZone& timeZone) {
    return QStringLiteral("Paneforge-backup-") +
           date.toTimeZone(timeZone).toString(QStringLiteral("yyyy-MM-dd")) +
           QStringLiteral(".json");
}

} // namespace paneforge
