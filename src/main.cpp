#include "cli/cli.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

// Composition root. With arguments the executable runs a headless command; the agent is wired in
// here as it lands.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Paneforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));

    const QStringList args = QCoreApplication::arguments().mid(1);
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (paneforge::isCliInvocation(args)) {
        return paneforge::runCli(args, out, err);
    }
    err << "paneforge: the snapping agent is not available in this build yet; see --help\n";
    return 1;
}
