#pragma once

#include "app/ports/backup_views.h"
#include "app/ports/native_windows.h"

namespace paneforge {

// The file dialogs (the platform's own where it has them), the restore preview and the warning,
// each brought to the front with the keyboard and run modally.
class QtBackupViews final : public BackupViews {
public:
    explicit QtBackupViews(NativeWindows& nativeWindows)
        : nativeWindows_(nativeWindows) {}

    std::optional<QString> chooseBackupDestination(const QString& suggestedName) override;
    std::optional<QString> chooseBackupToRestore() override;
    bool confirmRestore(const SettingsBackupPreview& preview) override;
    void showWarning(const QString& title, const QString& reason) override;

private:
    NativeWindows& nativeWindows_;
};

} // namespace paneforge
