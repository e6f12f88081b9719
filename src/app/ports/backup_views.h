#pragma once

#include "core/backup/settings_backup_preview.h"

#include <QString>
#include <optional>

namespace paneforge {

// The windows of backing up and restoring. Each call is modal: it returns once the user has
// answered, with Paneforge in front and the window holding the keyboard.
class BackupViews {
public:
    virtual ~BackupViews() = default;
    // "Backup Settings": where to write a new backup, JSON files only, `suggestedName` proposed;
    // none when cancelled.
    virtual std::optional<QString> chooseBackupDestination(const QString& suggestedName) = 0;
    // One existing JSON file to restore from; none when cancelled.
    virtual std::optional<QString> chooseBackupToRestore() = 0;
    // "Restore Settings?": what the backup holds; whether the user chose Restore.
    virtual bool confirmRestore(const SettingsBackupPreview& preview) = 0;
    // A warning with the reason below its title, waited for.
    virtual void showWarning(const QString& title, const QString& reason) = 0;
};

} // namespace paneforge
