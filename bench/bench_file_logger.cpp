#include "bench_harness.h"
#include "core/diagnostics/file_logger.h"

#include <QTemporaryDir>

// What a caller of log() pays: building the line with its timestamp and handing it to the worker.
int main() {
    QTemporaryDir dir;
    paneforge::FileLogger logger([&] { return dir.path(); });
    int i = 0;
    paneforge::bench::measure("FileLogger::log (caller's cost)", 20000, [&] {
        logger.log(
            QStringLiteral("SnapController.handleMouseDragged point=(812.0,455.0) cell=r0-c%1")
                .arg(++i % 4));
    });
    logger.flush();
    return 0;
}
