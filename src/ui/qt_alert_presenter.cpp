#include "ui/qt_alert_presenter.h"

#include "ui/shell_window_presenter.h"

#include <QMessageBox>

namespace paneforge {

void QtAlertPresenter::showInformational(const QString& title, const QString& message) {
    auto* box = new QMessageBox(QMessageBox::Information, title, title, QMessageBox::Ok);
    box->setInformativeText(message);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::ApplicationModal);
    presentWindow(*box, nativeWindows_);
}

} // namespace paneforge
