#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

// Composition root. For now the executable only answers --help and --version; the agent and the
// headless commands are wired in here as they land.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Paneforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PANEFORGE_VERSION));

    const QStringList args = QCoreApplication::arguments().mid(1);
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (args == QStringList{QStringLiteral("--version")}) {
        out << "Paneforge " << PANEFORGE_VERSION << "\n";
        return 0;
    }
    const QString usage = QStringLiteral("usage: paneforge [--help | --version]\n");
    if (args == QStringList{QStringLiteral("--help")}) {
        out << usage;
        return 0;
    }
    err << usage;
    return 2;
}
