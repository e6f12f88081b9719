// Saves two configurations alternately into the folder given as argument, back to back and
// forever, printing a line after each save. The kill test stops it with SIGKILL at random
// moments.
#include "interrupted_save_configs.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const QString directory = QString::fromLocal8Bit(argv[1]);
    const paneforge::ConfigStore store(
        paneforge::LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
        [&] { return directory; });
    const paneforge::PaneforgeConfig configs[] = {interrupted_save::config(0),
                                                  interrupted_save::config(1)};
    for (unsigned long long i = 0;; ++i) {
        store.saveConfig(configs[i % 2]);
        std::printf("%llu\n", i);
        std::fflush(stdout);
    }
}
