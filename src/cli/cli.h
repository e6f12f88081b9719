#pragma once

#include "core/config/config_store.h"

#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>

namespace paneforge {

// A line of standard input without its line end; none at the end of the input.
std::optional<QString> readStandardInputLine();

// What the headless commands need from their surroundings, injected so that tests never touch
// the user's real files.
struct CliEnvironment {
    ConfigDirectoryProvider configDirectory = defaultConfigDirectoryProvider();
    // One line the user types in answer to a question (standard input by default); none at the
    // end of the input.
    std::function<std::optional<QString>()> readAnswer = readStandardInputLine;
};

// Runs one headless command with the arguments as the system passed them (argv without the
// program name): file names are used byte for byte, so a name that is not valid in the locale's
// encoding still opens. Returns the process exit code: 0 on success, 1 when the command failed, 2
// for a usage error (usage text on `err`).
int runCli(const QList<QByteArray>& nativeArgs, QTextStream& out, QTextStream& err,
           const CliEnvironment& environment = {});

// Whether the arguments ask for a headless command rather than the agent.
bool isCliInvocation(const QStringList& args);

} // namespace paneforge
