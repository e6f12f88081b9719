#include "ui/qt_alert_presenter.h"

#include "ui/shell_window_presenter.h"

#include <QMessageBox>
#include <QPushButton>

namespace paneforge {

void QtAlertPresenter::showInformational(const QString& title, const QString& message) {
    auto* box = new QMessageBox(QMessageBox::Information, title, title, QMessageBox::Ok);
    box->setInformativeText(message);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::ApplicationModal);
    presentWindow(*box, nativeWindows_);
}

void QtAlertPresenter::confirm(const AlertConfirmation& question,
                               std::function<void(bool)> answered) {
    auto* box = new QMessageBox(QMessageBox::Warning, question.message, question.message,
                                QMessageBox::NoButton);
    box->setInformativeText(question.informativeText);
    QPushButton* confirmButton = box->addButton(question.confirmButton, QMessageBox::AcceptRole);
    QPushButton* cancelButton = box->addButton(question.cancelButton, QMessageBox::RejectRole);
    box->setDefaultButton(confirmButton);
    box->setEscapeButton(cancelButton);
    box->setWindowFlag(Qt::WindowStaysOnTopHint);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::ApplicationModal);
    QObject::connect(box, &QMessageBox::finished, box,
                     [box, confirmButton, answered = std::move(answered)] {
                         if (answered) {
                             answered(box->clickedButton() == confirmButton);
                         }
                     });
    presentWindow(*box, nativeWindows_);
}

} // namespace paneforge
