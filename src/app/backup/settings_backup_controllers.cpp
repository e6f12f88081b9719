#include "app/backup/settings_backup_controllers.h"

#include "core/config/atomic_file_writer.h"
#include "core/config/regular_file_reader.h"

#include <QTimeZone>

namespace paneforge {

namespace {
const QString kBackupFailed = QStringLiteral("Backup failed");
const QString kRestoreFailed = QStringLiteral("Restore failed");
} // namespace

BackupSettingsController::BackupSettingsController(const ConfigStore& store, BackupViews& views,
                                                   QString appVersion, Clock now, DiagnosticLog log)
    : store_(store)
    , views_(views)
    , appVersion_(appVersion.isEmpty() ? QStringLiteral("0.0.0") : std::move(appVersion))
    , now_(std::move(now))
    , log_(std::move(log)) {}

void BackupSettingsController::runBackup() {
    const QDateTime now = now_();
    const auto path = views_.chooseBackupDestination(
        SettingsBackupFilename::suggested(now, QTimeZone::systemTimeZone()));
    if (!path) {
        return;
    }
    QString failure;
    try {
        failure = writeFileAtomically(
            *path, SettingsBackupEncoder::encode(store_.loadConfig(), now, appVersion_));
    } catch (const ConfigStoreError& error) {
        failure = error.message();
    }
    if (failure.isEmpty()) {
        log_(QStringLiteral("BackupSettingsController.runBackup wrote ") + *path);
        return;
    }
    log_(QStringLiteral("BackupSettingsController.runBackup failed: ") + failure);
    views_.showWarning(kBackupFailed, failure);
}

RestoreSettingsController::RestoreSettingsController(const ConfigStore& store, BackupViews& views,
                                                     NotificationCenter& notifications,
                                                     DiagnosticLog log)
    : store_(store)
    , views_(views)
    , notifications_(notifications)
    , log_(std::move(log)) {}

void RestoreSettingsController::runRestore() {
    const auto path = views_.chooseBackupToRestore();
    if (!path) {
        return;
    }
    QString failure;
    const auto file = RegularFileReader::read(*path, SettingsBackupFormat::maxFileSizeBytes);
    if (file.status != RegularFileReader::Result::Status::Read) {
        failure = RegularFileReader::describeFailure(file, SettingsBackupFormat::maxFileSizeBytes);
    } else {
        try {
            restoreLoaded(SettingsBackupRestore::document(file.bytes));
            return;
        } catch (const SettingsBackupDecodingError& error) {
            failure = error.message();
        } catch (const SettingsBackupRestoreException& error) {
            failure = SettingsBackupRestoreException::description(error.error());
        } catch (const ConfigStoreError& error) {
            failure = error.message();
        }
    }
    log_(QStringLiteral("RestoreSettingsController.runRestore failed: ") + failure);
    views_.showWarning(kRestoreFailed, failure);
}

void RestoreSettingsController::restoreLoaded(const SettingsBackupDocument& document) {
    if (!views_.confirmRestore(SettingsBackupPreviewBuilder::preview(document))) {
        return;
    }
    store_.saveConfig(document.config);
    log_(
        QStringLiteral("RestoreSettingsController.restoreLoaded saved the backup's configuration"));
    notifications_.post(Notification::ConfigChanged);
}

} // namespace paneforge
