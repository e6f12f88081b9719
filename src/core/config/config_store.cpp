#include "core/config/config_store.h"

#include "core/config/json_decoding.h"
#include "core/config/pretty_json.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSaveFile>
#include <QStandardPaths>

namespace paneforge {

namespace {

// A human position for a parse error offset: 1-based line and column.
QString positionOf(const QByteArray& data, qsizetype offset) {
    offset = std::clamp<qsizetype>(offset, 0, data.size());
    const qsizetype line = data.left(offset).count('\n') + 1;
    const qsizetype lineStart = data.lastIndexOf('\n', offset - 1) + 1;
    return QStringLiteral("line %1, column %2").arg(line).arg(offset - lineStart + 1);
}

} // namespace

ConfigDirectoryProvider defaultConfigDirectoryProvider() {
    return [] {
#if defined(Q_OS_MACOS)
        // ~/Library/Application Support
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#else
        const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
        if (!xdg.isEmpty() && QDir::isAbsolutePath(xdg)) {
            return xdg;
        }
        const QString home = QDir::homePath();
        return home.isEmpty() ? QString() : home + QStringLiteral("/.config");
#endif
    };
}

ConfigStore::ConfigStore(Logger logger, ConfigDirectoryProvider directoryProvider)
    : logger_(std::move(logger))
    , directoryProvider_(std::move(directoryProvider)) {}

QString ConfigStore::getConfigPath() const {
    const QString base = directoryProvider_ ? directoryProvider_() : QString();
    if (base.isEmpty()) {
        throw ConfigStoreError(ConfigStoreError::Kind::Directory,
                               QStringLiteral("No per-user settings directory is available."));
    }
    const QString directory = QDir(base).filePath(QStringLiteral("Paneforge"));
    if (!QDir().mkpath(directory)) {
        throw ConfigStoreError(
            ConfigStoreError::Kind::Directory,
            QStringLiteral("The folder “%1” could not be created.").arg(directory));
    }
    return QDir(directory).filePath(fileName());
}

PaneforgeConfig ConfigStore::loadConfig() const {
    const QString path = getConfigPath();
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        return PaneforgeConfig::makeDefault();
    }
    QFile file(path);
    QByteArray data;
    if (info.isDir() || !file.open(QIODevice::ReadOnly)) {
        const QString reason = info.isDir() ? QStringLiteral("it is a folder") : file.errorString();
        const QString message =
            QStringLiteral("The file “%1” couldn’t be read: %2.").arg(path, reason);
        logger_.error(QStringLiteral("Failed to read config: %1").arg(message));
        throw ConfigStoreError(ConfigStoreError::Kind::Read, message);
    }
    data = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        const QString message =
            QStringLiteral("The file “%1” couldn’t be read: %2.").arg(path, file.errorString());
        logger_.error(QStringLiteral("Failed to read config: %1").arg(message));
        throw ConfigStoreError(ConfigStoreError::Kind::Read, message);
    }
    try {
        return decodeConfig(data);
    } catch (const ConfigStoreError& error) {
        logger_.error(QStringLiteral("Failed to decode config: %1").arg(error.message()));
        throw;
    }
}

PaneforgeConfig ConfigStore::decodeConfig(const QByteArray& data) {
    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(data, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        throw ConfigStoreError(
            ConfigStoreError::Kind::Decode,
            QStringLiteral("The data isn’t valid JSON (%1 at %2).")
                .arg(parseError.errorString(), positionOf(data, parseError.offset)));
    }
    try {
        return PaneforgeConfig::fromJson(document.isObject() ? QJsonValue(document.object())
                                                             : QJsonValue(document.array()));
    } catch (const JsonDecodingError& error) {
        throw ConfigStoreError(
            ConfigStoreError::Kind::Decode,
            QStringLiteral("The data isn’t a Paneforge configuration (%1).").arg(error.message()));
    }
}

QByteArray ConfigStore::encodeConfig(const PaneforgeConfig& config) {
    return PrettyJSON::writeValue(config.toJson(), 0).toUtf8();
}

void ConfigStore::saveConfig(const PaneforgeConfig& config) const {
    const QString path = getConfigPath();
    const QByteArray bytes = encodeConfig(config);
    const QString failure = writeFileAtomically(path, bytes);
    if (!failure.isEmpty()) {
        const QString message =
            QStringLiteral("The file “%1” couldn’t be saved: %2.").arg(path, failure);
        logger_.error(QStringLiteral("Failed to write config: %1").arg(message));
        throw ConfigStoreError(ConfigStoreError::Kind::Write, message);
    }
}

QString writeFileAtomically(const QString& path, const QByteArray& bytes) {
    // QSaveFile writes a temporary file in the same directory, syncs it to disk on commit and
    // renames it over the target; the old file stays intact until that rename.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    if (file.write(bytes) != bytes.size()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return reason;
    }
    if (!file.commit()) {
        return file.errorString();
    }
    return {};
}

} // namespace paneforge
