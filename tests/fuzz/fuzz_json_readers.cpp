// Feeds arbitrary bytes to the two JSON readers Paneforge exposes to files from outside: the
// configuration and the backup. Besides the sanitizers' findings, a reader that accepts a document
// must print it so that it reads back as the same value and prints the same bytes again.
#include "core/backup/settings_backup.h"
#include "core/config/config_store.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace paneforge;

namespace {

[[noreturn]] void fail(const char* what, const QByteArray& printed) {
    std::fprintf(stderr, "%s\n%s\n", what, printed.constData());
    std::abort();
}

void configuration(const QByteArray& bytes) {
    std::optional<PaneforgeConfig> config;
    try {
        config = ConfigStore::decodeConfig(bytes);
    } catch (const ConfigStoreError&) {
        return;
    }
    const QByteArray printed = ConfigStore::encodeConfig(*config);
    try {
        const PaneforgeConfig again = ConfigStore::decodeConfig(printed);
        if (!(again == *config)) {
            fail("a printed configuration reads back as another one", printed);
        }
        if (ConfigStore::encodeConfig(again) != printed) {
            fail("a printed configuration prints differently", printed);
        }
    } catch (const ConfigStoreError& error) {
        fail(qPrintable(error.message()), printed);
    }
}

void backup(const QByteArray& bytes) {
    std::optional<SettingsBackupDocument> document;
    try {
        document = SettingsBackupRestore::document(bytes);
    } catch (const SettingsBackupDecodingError&) {
        return;
    } catch (const SettingsBackupRestoreException&) {
        return;
    }
    const QByteArray printed = SettingsBackupEncoder::encode(*document);
    try {
        if (!(SettingsBackupRestore::document(printed) == *document)) {
            fail("a printed backup reads back as another one", printed);
        }
    } catch (const std::exception& error) {
        fail(error.what(), printed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    configuration(bytes);
    backup(bytes);
    return 0;
}
