#pragma once

#include "core/config/atomic_file_writer.h"
#include "core/config/paneforge_config.h"
#include "core/diagnostics/logger_factory.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace paneforge {

// A load or save that could not be done. The message is the error's user-readable description.
class ConfigStoreError : public std::runtime_error {
public:
    enum class Kind { Directory, Read, Decode, Encode, Write };

    ConfigStoreError(Kind kind, const QString& message)
        : std::runtime_error(message.toStdString())
        , kind_(kind)
        , message_(message) {}

    Kind kind() const { return kind_; }
    QString message() const { return message_; }

private:
    Kind kind_;
    QString message_;
};

// Gives the per-user directory under which the "Paneforge" directory lives (the application
// support directory on macOS, $XDG_CONFIG_HOME or ~/.config on Linux), or an empty string when
// there is none.
using ConfigDirectoryProvider = std::function<QString()>;

ConfigDirectoryProvider defaultConfigDirectoryProvider();

// Reads and writes the configuration file. Every load reads the file afresh, so a change written
// by any component, or by hand, is seen on the next load; only the decoding is skipped when the
// bytes are exactly those decoded last time (no invalidation to get wrong: the bytes decide).
class ConfigStore {
public:
    ConfigStore(Logger logger, ConfigDirectoryProvider directoryProvider);

    // A configuration is a few kilobytes (50 displays with 40 layouts each stay under 600 kB):
    // anything larger is refused, like an oversized backup.
    static constexpr qint64 maxFileSizeBytes = 16 * 1024 * 1024;

    // The default configuration when there is no file yet; throws ConfigStoreError when the file
    // cannot be read or decoded (the file is then left exactly as it is).
    PaneforgeConfig loadConfig() const;

    // Writes atomically: a temporary file beside the target, flushed to disk, renamed over it.
    void saveConfig(const PaneforgeConfig& config) const;

    // The file's path; creates the "Paneforge" directory when missing.
    QString getConfigPath() const;

    // The bytes saveConfig writes for a configuration.
    static QByteArray encodeConfig(const PaneforgeConfig& config);

    // Decodes a configuration file's bytes; ConfigStoreError (kind Decode) names the problem and,
    // for malformed JSON, its line and column. Oversized and absurdly nested data is refused
    // before it is parsed.
    static PaneforgeConfig decodeConfig(const QByteArray& data);

    static QString fileName() { return QStringLiteral("config.json"); }

private:
    PaneforgeConfig decodeOrReuse(const QByteArray& bytes) const;

    Logger logger_;
    ConfigDirectoryProvider directoryProvider_;
    // The last bytes decoded and what they decoded to.
    mutable std::mutex decodedMutex_;
    mutable QByteArray decodedBytes_;
    mutable std::optional<PaneforgeConfig> decoded_;
};

} // namespace paneforge
