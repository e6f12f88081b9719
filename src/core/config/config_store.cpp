#include "core/config/config_store.h"

#include "core/config/json_decoding.h"
#include "core/config/pretty_json.h"
#include "core/config/regular_file_reader.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonParseError>
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
    const auto file = RegularFileReader::read(path, maxFileSizeBytes);
    if (file.status == RegularFileReader::Result::Status::Missing) {
        return PaneforgeConfig::makeDefault();
    }
    if (file.status != RegularFileReader::Result::Status::Read) {
        const QString message =
            QStringLiteral("The file “%1” couldn’t be read: %2.")
                .arg(path, RegularFileReader::describeFailure(file, maxFileSizeBytes));
        logger_.error(QStringLiteral("Failed to read config: %1").arg(message));
        throw ConfigStoreError(ConfigStoreError::Kind::Read, message);
    }
    try {
        return decodeOrReuse(file.bytes);
    } catch (const ConfigStoreError& error) {
        logger_.error(QStringLiteral("Failed to decode config: %1").arg(error.message()));
        throw;
    }
}

PaneforgeConfig ConfigStore::decodeOrReuse(const QByteArray& bytes) const {
    const std::lock_guard lock(decodedMutex_);
    if (decoded_ && bytes == decodedBytes_) {
        return *decoded_;
    }
    decoded_ = decodeConfig(bytes);
    decodedBytes_ = bytes;
    return *decoded_;
}

PaneforgeConfig ConfigStore::decodeConfig(const QByteArray& data) {
    if (data.size() > maxFileSizeBytes) {
        throw ConfigStoreError(ConfigStoreError::Kind::Decode,
                               QStringLiteral("The data is too large to be a Paneforge "
                                              "configuration (more than %1 MB).")
                                   .arg(maxFileSizeBytes / (1024 * 1024)));
    }
    if (const auto excess = json::excessiveStructure(data)) {
        throw ConfigStoreError(ConfigStoreError::Kind::Decode,
                               QStringLiteral("The data is too complex to be a Paneforge "
                                              "configuration (%1, at %2).")
                                   .arg(excess->describe({}), positionOf(data, excess->offset)));
    }
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

} // namespace paneforge
