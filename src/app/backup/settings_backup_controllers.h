#pragma once

#include "app/ports/backup_views.h"
#include "app/runtime/notification_center.h"
#include "core/backup/settings_backup.h"
#include "core/config/config_store.h"
#include "core/diagnostics/diagnostic_log.h"

#include <QDateTime>
#include <functional>

namespace paneforge {

using Clock = std::function<QDateTime()>;

// "Backup Settings…": the configuration as it is on disk, written to a file the user chooses.
class BackupSettingsController {
public:
    BackupSettingsController(const ConfigStore& store, BackupViews& views, QString appVersion,
                             Clock now, DiagnosticLog log);

    // Asks where, then writes; any failure ends in one "Backup failed" warning.
    void runBackup();

private:
    const ConfigStore& store_;
    BackupViews& views_;
    QString appVersion_;
    Clock now_;
    DiagnosticLog log_;
};

// "Restore Settings…": a backup file chosen by the user replaces the whole configuration, after a
// preview the user confirms. Nothing is ever half applied: the configuration is written in one
// atomic save, or not at all.
class RestoreSettingsController {
public:
    RestoreSettingsController(const ConfigStore& store, BackupViews& views,
                              NotificationCenter& notifications, DiagnosticLog log);

    // Asks which file, reads it and restores it; any failure ends in one "Restore failed"
    // warning, with the configuration untouched.
    void runRestore();
    // Shows what `document` holds and, only if the user confirms, saves its configuration and
    // posts "PaneforgeConfigChanged". Throws ConfigStoreError when the save fails.
    void restoreLoaded(const SettingsBackupDocument& document);

private:
    const ConfigStore& store_;
    BackupViews& views_;
    NotificationCenter& notifications_;
    DiagnosticLog log_;
};

} // namespace paneforge
