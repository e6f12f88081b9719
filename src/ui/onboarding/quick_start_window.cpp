#include "ui/onboarding/quick_start_window.h"

#include "ui/onboarding/onboarding_style.h"
#include "ui/shell_window_presenter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace paneforge {

QuickStartWindow::QuickStartWindow(NativeWindows& nativeWindows, QuickStartActions actions)
    : nativeWindows_(nativeWindows)
    , actions_(std::move(actions))
    , title_(new QLabel(this))
    , body_(new QLabel(this))
    , step_(new QLabel(this))
    , primary_(new QPushButton(this))
    , skip_(new QPushButton(QStringLiteral("Skip"), this))
    , back_(new QPushButton(QStringLiteral("Back"), this))
    , next_(new QPushButton(this)) {
    setWindowTitle(QStringLiteral("Quick Start"));
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::WindowStaysOnTopHint);
    setFixedSize(520, 280);

    OnboardingStyle::setPointSize(*title_, 18);
    OnboardingStyle::setPointSize(*body_, 13);
    OnboardingStyle::setPointSize(*step_, 11);
    OnboardingStyle::setTextTone(*body_, OnboardingStyle::Tone::Secondary);
    OnboardingStyle::setTextTone(*step_, OnboardingStyle::Tone::Tertiary);
    body_->setWordWrap(true);
    body_->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* primaryRow = new QHBoxLayout;
    primaryRow->addWidget(primary_);
    primaryRow->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(skip_);
    buttons->addStretch();
    buttons->addWidget(back_);
    buttons->addWidget(next_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 20);
    layout->setSpacing(10);
    layout->addWidget(step_);
    layout->addWidget(title_);
    layout->addWidget(body_, 1);
    layout->addLayout(primaryRow);
    layout->addSpacing(6);
    layout->addLayout(buttons);

    // Return goes on; Escape, Skip and the title bar close (QDialog::reject).
    next_->setDefault(true);
    for (QPushButton* button : {primary_, skip_, back_}) {
        button->setAutoDefault(false);
    }
    connect(next_, &QPushButton::clicked, this, [this] { actions_.next(); });
    connect(back_, &QPushButton::clicked, this, [this] { actions_.back(); });
    connect(skip_, &QPushButton::clicked, this, [this] { actions_.skip(); });
    connect(primary_, &QPushButton::clicked, this, [this] { actions_.primaryAction(); });
    connect(this, &QDialog::finished, this, [this] { actions_.closed(); });
}

void QuickStartWindow::showPage(const QuickStartChrome& chrome) {
    title_->setText(chrome.title);
    body_->setText(chrome.body);
    step_->setText(chrome.stepText);
    primary_->setVisible(chrome.primaryActionTitle.has_value());
    primary_->setText(chrome.primaryActionTitle.value_or(QString()));
    // Room around the title, as the bottom buttons have.
    primary_->setMinimumWidth(primary_->fontMetrics().horizontalAdvance(primary_->text()) + 32);
    back_->setEnabled(chrome.backEnabled);
    next_->setText(chrome.nextTitle);
    next_->setFocus();
}

void QuickStartWindow::present() {
    presentWindow(*this, nativeWindows_);
}

void QuickStartWindow::dismiss() {
    reject();
}

} // namespace paneforge
