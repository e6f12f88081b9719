#include "ui/qt_backup_views.h"

#include "ui/restore_preview_window.h"
#include "ui/shell_window_presenter.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

namespace paneforge {

namespace {

const QString kJsonFiles = QStringLiteral("JSON files (*.json)");

std::optional<QString> runFileDialog(QFileDialog& dialog, NativeWindows& nativeWindows) {
    dialog.setNameFilter(kJsonFiles);
    dialog.setWindowModality(Qt::ApplicationModal);
    presentWindow(dialog, nativeWindows);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().front();
}

} // namespace

std::optional<QString> QtBackupViews::chooseBackupDestination(const QString& suggestedName) {
    QFileDialog dialog(nullptr, QStringLiteral("Backup Settings"), QDir::homePath());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QStringLiteral("json"));
    dialog.selectFile(suggestedName);
    return runFileDialog(dialog, nativeWindows_);
}

std::optional<QString> QtBackupViews::chooseBackupToRestore() {
    QFileDialog dialog(nullptr, QStringLiteral("Restore Settings"), QDir::homePath());
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return runFileDialog(dialog, nativeWindows_);
}

bool QtBackupViews::confirmRestore(const SettingsBackupPreview& preview) {
    RestorePreviewWindow window(preview,
                                SettingsBackupPreviewBuilder::headerText(
                                    preview, SettingsBackupPreviewBuilder::defaultDateFormatter()));
    window.setWindowModality(Qt::ApplicationModal);
    presentWindow(window, nativeWindows_);
    return window.exec() == QDialog::Accepted;
}

void QtBackupViews::showWarning(const QString& title, const QString& reason) {
    QMessageBox box(QMessageBox::Warning, title, title, QMessageBox::Ok);
    box.setInformativeText(reason);
    box.setWindowModality(Qt::ApplicationModal);
    presentWindow(box, nativeWindows_);
    box.exec();
}

} // namespace paneforge
