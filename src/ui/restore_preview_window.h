#pragma once

#include "core/backup/settings_backup_preview.h"

#include <QDialog>
#include <QWidget>

namespace paneforge {

// The layouts of a backup as cards, one section per display, laid out on the restore preview's
// board grid.
class RestorePreviewBoardView final : public QWidget {
public:
    explicit RestorePreviewBoardView(std::vector<SettingsBackupPreviewSection> sections,
                                     QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<SettingsBackupPreviewSection> sections_;
    std::vector<int> counts_;
};

// "Restore Settings?": what the backup holds above the board of its layouts, with "Cancel"
// (Escape) and "Restore" (Return). Accepted means restore.
class RestorePreviewWindow final : public QDialog {
public:
    RestorePreviewWindow(const SettingsBackupPreview& preview, const QString& headerText,
                         QWidget* parent = nullptr);
};

} // namespace paneforge
