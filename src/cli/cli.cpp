#include "cli/cli.h"

#include "core/backup/settings_backup_preview.h"
#include "core/config/regular_file_reader.h"
#include "core/diagnostics/logger_factory.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace paneforge {

namespace {

const QString kUsage = QStringLiteral(
    "usage: paneforge [--help | --version]\n"
    "       paneforge config path\n"
    "       paneforge config check [FILE]\n"
    "       paneforge config print [FILE]\n"
    "       paneforge backup export FILE [--force]\n"
    "       paneforge backup check FILE\n"
    "       paneforge backup restore FILE [--yes]\n"
    "\n"
    "Without arguments paneforge starts the snapping agent.\n"
    "\n"
    "config path     print where the configuration file is kept\n"
    "config check    check a configuration file (default: yours) and explain what is wrong\n"
    "config print    print a configuration as Paneforge would save it\n"
    "backup export   write a backup of your configuration to FILE (--force overwrites)\n"
    "backup check    check a backup file and describe what it holds\n"
    "backup restore  replace your configuration with a backup's, after showing what it holds\n"
    "                and asking (--yes does not ask)\n");

int usageError(QTextStream& err, const QString& problem) {
    err << "paneforge: " << problem << "\n" << kUsage;
    return 2;
}

// A command-line argument as text for matching and messages, and as the bytes the system gave,
// which name a file exactly even when they are not valid in the locale's encoding.
struct Argument {
    QString text;
    QByteArray native;
};

QList<Argument> fromText(const QStringList& args) {
    QList<Argument> arguments;
    for (const QString& arg : args) {
        arguments.append({arg, QFile::encodeName(arg)});
    }
    return arguments;
}

// Reads a file named on the command line, or the user's configuration: only a regular file, and
// no more than `maxBytes`. Prints why it could not be read, unless it is missing and that is fine.
RegularFileReader::Result readInput(const Argument& file, qint64 maxBytes, QTextStream& err,
                                    bool missingIsFine = false) {
    auto result = RegularFileReader::read(file.native, maxBytes);
    const bool missing = result.status == RegularFileReader::Result::Status::Missing;
    if (result.status != RegularFileReader::Result::Status::Read && !(missing && missingIsFine)) {
        err << "paneforge: " << file.text << ": "
            << RegularFileReader::describeFailure(result, maxBytes) << "\n";
    }
    return result;
}

// Reads a configuration file given on the command line, or the user's own. A missing explicit
// file is an error; a missing user file means the defaults.
std::optional<PaneforgeConfig> readConfig(const QList<Argument>& rest, QTextStream& err,
                                          const ConfigStore& store, bool missingUserFileIsDefault) {
    Argument file;
    try {
        file = rest.isEmpty() ? fromText({store.getConfigPath()}).front() : rest.front();
    } catch (const ConfigStoreError& error) {
        err << "paneforge: " << error.message() << "\n";
        return std::nullopt;
    }
    const bool defaultsIfMissing = rest.isEmpty() && missingUserFileIsDefault;
    const auto input = readInput(file, ConfigStore::maxFileSizeBytes, err, defaultsIfMissing);
    if (defaultsIfMissing && input.status == RegularFileReader::Result::Status::Missing) {
        return PaneforgeConfig::makeDefault();
    }
    if (input.status != RegularFileReader::Result::Status::Read) {
        return std::nullopt;
    }
    try {
        return ConfigStore::decodeConfig(input.bytes);
    } catch (const ConfigStoreError& error) {
        err << "paneforge: " << file.text << ": " << error.message() << "\n";
        return std::nullopt;
    }
}

int runConfig(const QList<Argument>& args, QTextStream& out, QTextStream& err,
              const CliEnvironment& environment) {
    if (args.isEmpty()) {
        return usageError(err, QStringLiteral("config needs a command"));
    }
    const QString command = args.front().text;
    const QList<Argument> rest = args.mid(1);
    const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                            environment.configDirectory);
    if (command == QLatin1String("path")) {
        if (!rest.isEmpty()) {
            return usageError(err, QStringLiteral("config path takes no arguments"));
        }
        try {
            out << store.getConfigPath() << "\n";
            return 0;
        } catch (const ConfigStoreError& error) {
            err << "paneforge: " << error.message() << "\n";
            return 1;
        }
    }
    if (command == QLatin1String("check") || command == QLatin1String("print")) {
        if (rest.size() > 1 ||
            (!rest.isEmpty() && rest.front().text.startsWith(QLatin1Char('-')))) {
            return usageError(err, QStringLiteral("config %1 takes at most one FILE").arg(command));
        }
        const bool check = command == QLatin1String("check");
        const auto config = readConfig(rest, err, store, !check);
        if (!config) {
            return 1;
        }
        if (check) {
            out << "OK\n";
        } else {
            // The file's own bytes; straight to the device when there is one, since a large
            // configuration would otherwise be converted twice on its way out.
            const QByteArray bytes = ConfigStore::encodeConfig(*config) + '\n';
            if (QIODevice* device = out.device()) {
                out.flush();
                device->write(bytes);
            } else {
                out << QString::fromUtf8(bytes);
            }
        }
        return 0;
    }
    return usageError(err, QStringLiteral("unknown config command “%1”").arg(command));
}

// Replaces the user's configuration with a backup's in one atomic save, once the user agrees. A
// running agent sees the new file by itself.
int restoreConfig(const PaneforgeConfig& config, bool yes, QTextStream& out, QTextStream& err,
                  const CliEnvironment& environment) {
    if (!yes) {
        out << "Restore this backup over your configuration? [y/N] ";
        out.flush();
        const auto answer = environment.readAnswer();
        const QString word = answer ? answer->trimmed().toLower() : QString();
        if (word != QLatin1String("y") && word != QLatin1String("yes")) {
            out << "Nothing was changed.\n";
            return 1;
        }
    }
    const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                            environment.configDirectory);
    try {
        store.saveConfig(config);
    } catch (const ConfigStoreError& error) {
        err << "paneforge: the configuration could not be saved: " << error.message() << "\n";
        return 1;
    }
    out << "Configuration restored to " << store.getConfigPath() << "\n";
    return 0;
}

int runBackup(const QList<Argument>& args, QTextStream& out, QTextStream& err,
              const CliEnvironment& environment) {
    if (args.isEmpty()) {
        return usageError(err, QStringLiteral("backup needs a command"));
    }
    const QString command = args.front().text;
    QList<Argument> files;
    bool force = false;
    bool yes = false;
    for (const Argument& arg : args.mid(1)) {
        if (arg.text == QLatin1String("--force") && command == QLatin1String("export")) {
            force = true;
        } else if (arg.text == QLatin1String("--yes") && command == QLatin1String("restore")) {
            yes = true;
        } else if (arg.text.startsWith(QLatin1Char('-'))) {
            return usageError(err, QStringLiteral("unknown option “%1”").arg(arg.text));
        } else {
            files.append(arg);
        }
    }
    if (command != QLatin1String("export") && command != QLatin1String("check") &&
        command != QLatin1String("restore")) {
        return usageError(err, QStringLiteral("unknown backup command “%1”").arg(command));
    }
    if (files.size() != 1) {
        return usageError(err, QStringLiteral("backup %1 takes one FILE").arg(command));
    }
    const QString path = files.front().text;

    if (command == QLatin1String("export")) {
        if (QFileInfo::exists(path) && !force) {
            err << "paneforge: " << path << " already exists; use --force to overwrite it\n";
            return 1;
        }
        const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                                environment.configDirectory);
        try {
            const QByteArray bytes =
                SettingsBackupEncoder::encode(store.loadConfig(), QDateTime::currentDateTimeUtc(),
                                              QStringLiteral(PANEFORGE_VERSION));
            const QString failure = writeFileAtomically(path, bytes);
            if (!failure.isEmpty()) {
                err << "paneforge: " << path << ": " << failure << "\n";
                return 1;
            }
        } catch (const ConfigStoreError& error) {
            err << "paneforge: your configuration could not be read: " << error.message() << "\n";
            return 1;
        }
        out << "Backup written to " << path << "\n";
        return 0;
    }

    const auto input = readInput(files.front(), SettingsBackupFormat::maxFileSizeBytes, err);
    if (input.status != RegularFileReader::Result::Status::Read) {
        return 1;
    }
    try {
        const auto document = SettingsBackupRestore::document(input.bytes);
        const auto preview = SettingsBackupPreviewBuilder::preview(document);
        out << SettingsBackupPreviewBuilder::informativeText(
                   preview, SettingsBackupPreviewBuilder::defaultDateFormatter())
            << "\n";
        if (command == QLatin1String("check")) {
            return 0;
        }
        return restoreConfig(document.config, yes, out, err, environment);
    } catch (const SettingsBackupDecodingError& error) {
        err << "paneforge: " << path << ": " << error.message() << "\n";
    } catch (const SettingsBackupRestoreException& error) {
        err << "paneforge: " << path << ": "
            << SettingsBackupRestoreException::description(error.error()) << "\n";
    }
    return 1;
}

int runCli(const QList<Argument>& args, QTextStream& out, QTextStream& err,
           const CliEnvironment& environment) {
    if (args.isEmpty()) {
        return usageError(err, QStringLiteral("no command given"));
    }
    const QString first = args.front().text;
    const bool help = first == QLatin1String("--help") || first == QLatin1String("-h") ||
                      first == QLatin1String("help");
    const bool version = first == QLatin1String("--version");
    if ((help || version) && args.size() > 1) {
        return usageError(err, QStringLiteral("%1 takes no arguments").arg(first));
    }
    if (help) {
        out << kUsage;
        return 0;
    }
    if (version) {
        out << "Paneforge " << PANEFORGE_VERSION << "\n";
        return 0;
    }
    if (first == QLatin1String("config")) {
        return runConfig(args.mid(1), out, err, environment);
    }
    if (first == QLatin1String("backup")) {
        return runBackup(args.mid(1), out, err, environment);
    }
    if (first.startsWith(QLatin1Char('-'))) {
        return usageError(err, QStringLiteral("unknown option “%1”").arg(first));
    }
    return usageError(err, QStringLiteral("unknown command “%1”").arg(first));
}

} // namespace

std::optional<QString> readStandardInputLine() {
    QTextStream in(stdin);
    QString line;
    if (!in.readLineInto(&line)) {
        return std::nullopt;
    }
    return line;
}

bool isCliInvocation(const QStringList& args) {
    return !args.isEmpty();
}

int runCli(const QList<QByteArray>& nativeArgs, QTextStream& out, QTextStream& err,
           const CliEnvironment& environment) {
    QList<Argument> arguments;
    for (const QByteArray& arg : nativeArgs) {
        arguments.append({QFile::decodeName(arg), arg});
    }
    return runCli(arguments, out, err, environment);
}

} // namespace paneforge
