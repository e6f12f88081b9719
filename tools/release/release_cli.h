#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QStringList>
#include <QTextStream>
#include <functional>

namespace paneforge::release {

// What the release commands take from their surroundings, injected so that tests fix the clock
// and the standard input.
struct ReleaseCliEnvironment {
    std::function<QDateTime()> now = [] { return QDateTime::currentDateTimeUtc(); };
    std::function<QByteArray()> standardInput = readStandardInput;
    // The LSMinimumSystemVersion the bundle is built with, the items' default.
    QString minimumSystemVersion = defaultMinimumSystemVersion();

    static QByteArray readStandardInput();
    static QString defaultMinimumSystemVersion();
};

// Runs one paneforge-release command (`args` without the program name). Returns the exit code: 0
// on success, 1 when the command failed (or `check` found offenders), 2 for a usage error.
int runReleaseCli(const QStringList& args, QTextStream& out, QTextStream& err,
                  const ReleaseCliEnvironment& environment = {});

} // namespace paneforge::release
