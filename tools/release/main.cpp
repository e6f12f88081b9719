#include "release/release_cli.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("paneforge-release"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    return paneforge::release::runReleaseCli(QCoreApplication::arguments().mid(1), out, err);
}
