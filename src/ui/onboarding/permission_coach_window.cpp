#include "ui/onboarding/permission_coach_window.h"

#include "ui/onboarding/onboarding_style.h"
#include "ui/shell_window_presenter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace paneforge {

PermissionCoachWindow::PermissionCoachWindow(NativeWindows& nativeWindows,
                                             std::function<void()> onButton)
    : nativeWindows_(nativeWindows)
    , title_(new QLabel(this))
    , message_(new QLabel(this))
    , button_(new QPushButton(this)) {
    setWindowTitle(QStringLiteral("Paneforge"));
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::WindowStaysOnTopHint);
    setFixedSize(480, 260);

    OnboardingStyle::setPointSize(*title_, 16);
    QFont bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    OnboardingStyle::setPointSize(*message_, 13);
    OnboardingStyle::setTextTone(*message_, OnboardingStyle::Tone::Secondary);
    message_->setWordWrap(true);
    message_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(button_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 20);
    layout->setSpacing(12);
    layout->addWidget(title_);
    layout->addWidget(message_, 1);
    layout->addLayout(buttons);

    button_->setDefault(true);
    connect(button_, &QPushButton::clicked, this, [onButton = std::move(onButton)] {
        if (onButton) {
            onButton();
        }
    });
}

void PermissionCoachWindow::present(const PermissionCoachContent& content) {
    title_->setText(content.title);
    message_->setText(content.message);
    button_->setText(content.buttonTitle);
    if (QDialog::isVisible()) {
        raise();
        return;
    }
    presentWindow(*this, nativeWindows_);
}

void PermissionCoachWindow::dismiss() {
    hide();
}

} // namespace paneforge
