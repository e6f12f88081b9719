#include "bench_harness.h"
#include "config_fixtures.h"

#include <QTemporaryDir>

// Loading runs on every pointer movement of a snap: it reads the file each time and decodes it only
// when the bytes changed since the last decode; a hand edit costs one decode.
int main() {
    using namespace paneforge;
    QTemporaryDir home;
    const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                            [&] { return home.path(); });
    const struct {
        const char* name;
        PaneforgeConfig config;
        int runs;
    } cases[] = {{"typical (3 displays x 5 layouts)", fixtures::smallConfig(), 2000},
                 {"large (50 displays x 40 layouts)", fixtures::largeConfig(), 100}};
    for (const auto& c : cases) {
        store.saveConfig(c.config);
        std::printf("%s: %lld bytes\n", c.name,
                    static_cast<long long>(ConfigStore::encodeConfig(c.config).size()));
        bench::measure(std::string("loadConfig ") + c.name, c.runs,
                       [&] { (void)store.loadConfig(); });
        const QByteArray bytes = ConfigStore::encodeConfig(c.config);
        bench::measure(std::string("decodeConfig ") + c.name, c.runs / 10,
                       [&] { (void)ConfigStore::decodeConfig(bytes); });
        bench::measure(std::string("saveConfig ") + c.name, c.runs / 10,
                       [&] { store.saveConfig(c.config); });
    }
    return 0;
}
