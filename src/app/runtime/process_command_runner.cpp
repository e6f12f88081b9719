#include "app/runtime/process_command_runner.h"

#include <QProcess>

namespace paneforge {

int ProcessCommandRunner::run(const QString& executable, const QStringList& arguments) {
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(executable, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    return process.exitCode();
}

} // namespace paneforge
