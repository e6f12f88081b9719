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

void check(bool holds, const char* what, const QByteArray& printed) {
    if (!holds) {
        std::fprintf(stderr, "%s\n%s\n", what, printed.constData());
        std::abort();
    }
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
        check(again == *config, "a printed configuration reads back as another one", printed);
        check(ConfigStore::encodeConfig(again) == printed, "it prints differently", printed);
    } catch (const ConfigStoreError& error) {
        check(false, qPrintable(error.message()), printed);
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
        check(SettingsBackupRestore::document(printed) == *document,
              "a printed backup reads back as another one", printed);
    } catch (const std::exception& error) {
        check(false, error.what(), printed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    configuration(bytes);
    backup(bytes);
    return 0;
}
