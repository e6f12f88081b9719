#include "cli/cli.h"

#include "core/logger_factory.h"

#include <QFile>
#include <QFileInfo>

namespace paneforge {

namespace {

const QString kUsage = QStringLiteral(
    "usage: paneforge [--help | --version]\n"
    "       paneforge config path\n"
    "       paneforge config check [FILE]\n"
    "       paneforge config print [FILE]\n"
    "\n"
    "Without arguments paneforge starts the snapping agent.\n"
    "\n"
    "config path     print where the configuration file is kept\n"
    "config check    check a configuration file (default: yours) and explain what is wrong\n"
    "config print    print a configuration as Paneforge would save it\n");

int usageError(QTextStream& err, const QString& problem) {
    err << "paneforge: " << problem << "\n" << kUsage;
    return 2;
}

// Reads a configuration file given on the command line, or the user's own. A missing explicit
// file is an error; a missing user file means the defaults.
std::optional<PaneforgeConfig> readConfig(const QStringList& rest, QTextStream& err,
                                          const ConfigStore& store, bool missingUserFileIsDefault) {
    QString path;
    try {
        path = rest.isEmpty() ? store.getConfigPath() : rest.front();
    } catch (const ConfigStoreError& error) {
        err << "paneforge: " << error.message() << "\n";
        return std::nullopt;
    }
    const QFileInfo info(path);
    if (!info.exists()) {
        if (rest.isEmpty() && missingUserFileIsDefault) {
            return PaneforgeConfig::makeDefault();
        }
        err << "paneforge: " << path << ": no such file\n";
        return std::nullopt;
    }
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly)) {
        err << "paneforge: " << path << ": "
            << (info.isDir() ? QStringLiteral("is a folder, not a file") : file.errorString())
            << "\n";
        return std::nullopt;
    }
    try {
        return ConfigStore::decodeConfig(file.readAll());
    } catch (const ConfigStoreError& error) {
        err << "paneforge: " << path << ": " << error.message() << "\n";
        return std::nullopt;
    }
}

int runConfig(const QStringList& args, QTextStream& out, QTextStream& err,
              const CliEnvironment& environment) {
    if (args.isEmpty()) {
        return usageError(err, QStringLiteral("config needs a command"));
    }
    const QString command = args.front();
    const QStringList rest = args.mid(1);
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
        if (rest.size() > 1 || (!rest.isEmpty() && rest.front().startsWith(QLatin1Char('-')))) {
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
            out << QString::fromUtf8(ConfigStore::encodeConfig(*config)) << "\n";
        }
        return 0;
    }
    return usageError(err, QStringLiteral("unknown config command “%1”").arg(command));
}

} // namespace

bool isCliInvocation(const QStringList& args) {
    return !args.isEmpty();
}

int runCli(const QStringList& args, QTextStream& out, QTextStream& err,
           const CliEnvironment& environment) {
    if (args.isEmpty()) {
        return usageError(err, QStringLiteral("no command given"));
    }
    const QString first = args.front();
    if (first == QLatin1String("--help") || first == QLatin1String("-h") ||
        first == QLatin1String("help")) {
        out << kUsage;
        return 0;
    }
    if (first == QLatin1String("--version")) {
        out << "Paneforge " << PANEFORGE_VERSION << "\n";
        return 0;
    }
    if (first == QLatin1String("config")) {
        return runConfig(args.mid(1), out, err, environment);
    }
    return usageError(err, QStringLiteral("unknown command “%1”").arg(first));
}

} // namespace paneforge
