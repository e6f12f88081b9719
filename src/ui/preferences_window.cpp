#include "ui/preferences_window.h"

#include "core/input/hotkey_definition.h"
#include "ui/shell_window_presenter.h"

#include <QCheckBox>
#include <QDialog>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace paneforge {

namespace {

// The part of a check box's object name that names its modifier, on every platform.
QString objectWord(std::uint32_t bit) {
    switch (bit) {
    case modifier_bits::kCommand:
        return QStringLiteral("Cmd");
    case modifier_bits::kShift:
        return QStringLiteral("Shift");
    case modifier_bits::kOption:
        return QStringLiteral("Option");
    case modifier_bits::kControl:
        return QStringLiteral("Control");
    default:
        return QString::number(bit);
    }
}

QLabel* infoLabel(const QString& name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::PlaceholderText);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setVisible(false);
    return label;
}

QPushButton* plainButton(const QString& text, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    // Return and Space belong to the focused control (and to the recorder), never to a default
    // button of the dialog.
    button->setAutoDefault(false);
    button->setDefault(false);
    return button;
}

} // namespace

// The dialog reports that it closed or lost the keyboard, however that happened.
class PreferencesWindow::Dialog final : public QDialog {
public:
    explicit Dialog(PreferencesFormEvents*& events)
        : events_(events) {}

protected:
    void hideEvent(QHideEvent* event) override {
        QDialog::hideEvent(event);
        if (events_) {
            events_->windowDeactivated();
        }
    }
    void changeEvent(QEvent* event) override {
        QDialog::changeEvent(event);
        if (event->type() == QEvent::ActivationChange && !isActiveWindow() && events_) {
            events_->windowDeactivated();
        }
    }

private:
    PreferencesFormEvents*& events_;
};

PreferencesWindow::PreferencesWindow(PreferencesFormEvents& events, NativeWindows& nativeWindows)
    : events_(&events)
    , nativeWindows_(nativeWindows)
    , dialog_(std::make_unique<Dialog>(events_)) {
    build();
}

PreferencesWindow::~PreferencesWindow() {
    // Hiding on the way out reports nothing.
    events_ = nullptr;
}

QDialog& PreferencesWindow::dialog() {
    return *dialog_;
}

void PreferencesWindow::build() {
    QDialog* dialog = dialog_.get();
    dialog->setWindowTitle(title());
    dialog->setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);

    // Snapping: the margin and the two combinations.
    auto* snapping = new QGroupBox(QStringLiteral("Snapping"), dialog);
    auto* snapGrid = new QGridLayout(snapping);
    snapGrid->setColumnStretch(1, 1);

    auto* marginLabel = new QLabel(QStringLiteral("Cell margin"), snapping);
    marginSlider_ = new QSlider(Qt::Horizontal, snapping);
    marginSlider_->setObjectName(QStringLiteral("marginSlider"));
    marginSlider_->setRange(0, kMaximumMarginPoints * kSliderUnitsPerPoint);
    marginSlider_->setSingleStep(kSliderUnitsPerPoint);
    marginSlider_->setPageStep(5 * kSliderUnitsPerPoint);
    marginSlider_->setTickPosition(QSlider::NoTicks);
    marginSlider_->setValue(8 * kSliderUnitsPerPoint);
    marginSlider_->setAccessibleName(QStringLiteral("Cell margin"));
    marginLabel->setBuddy(marginSlider_);
    marginValueLabel_ = new QLabel(snapping);
    marginValueLabel_->setObjectName(QStringLiteral("marginValueLabel"));
    // Room for the widest value, so that the slider never moves under the pointer.
    marginValueLabel_->setMinimumWidth(
        marginValueLabel_->fontMetrics().horizontalAdvance(QStringLiteral("0000 pt")));
    marginValueLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QObject::connect(marginSlider_, &QSlider::valueChanged, dialog, [this](int value) {
        if (!displaying_ && events_) {
            events_->cellMarginChanged(double(value) / kSliderUnitsPerPoint);
        }
    });
    auto* marginRow = new QHBoxLayout;
    marginRow->addWidget(marginSlider_, 1);
    marginRow->addWidget(marginValueLabel_);
    snapGrid->addWidget(marginLabel, 0, 0);
    snapGrid->addLayout(marginRow, 0, 1);

    const auto addSnapRow = [&](int gridRow, const QString& text, SnapCombination row,
                                std::array<QCheckBox*, 4>& boxes) {
        snapGrid->addWidget(new QLabel(text, snapping), gridRow, 0);
        auto* line = new QHBoxLayout;
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            boxes[i] = new QCheckBox(snapping);
            QObject::connect(boxes[i], &QCheckBox::clicked, dialog,
                             [this, row] { reportSnapRow(row); });
            line->addWidget(boxes[i]);
        }
        line->addStretch();
        snapGrid->addLayout(line, gridRow, 1);
    };
    addSnapRow(1, QStringLiteral("Single-zone snap"), SnapCombination::Single, singleBoxes_);
    addSnapRow(2, QStringLiteral("Multi-zone snap"), SnapCombination::Multi, multiBoxes_);

    // Hot keys: title, the combination, record, clear.
    auto* hotkeys = new QGroupBox(QStringLiteral("Hot keys"), dialog);
    auto* hotkeyGrid = new QGridLayout(hotkeys);
    hotkeyGrid->setColumnStretch(1, 1);
    int gridRow = 0;
    for (const HotkeySlot& slot : hotkeySlots()) {
        const QString id = QString::number(slot.id());
        HotkeyRowWidgets row{slot.slot, new QLabel(hotkeys), new QLabel(hotkeys),
                             plainButton(QStringLiteral("Record"),
                                         QStringLiteral("recordHotkeyButton") + id, hotkeys),
                             plainButton(QStringLiteral("Clear"),
                                         QStringLiteral("clearHotkeyButton") + id, hotkeys)};
        row.value->setObjectName(QStringLiteral("hotkeyValueLabel") + id);
        row.value->setTextFormat(Qt::PlainText);
        // Room for a long combination ("Super + Ctrl + Alt + Shift + Escape").
        row.value->setMinimumWidth(row.value->fontMetrics().averageCharWidth() * 34);
        QObject::connect(row.record, &QPushButton::clicked, dialog, [this, s = slot.slot] {
            if (events_) {
                events_->recordHotkeyClicked(s);
            }
        });
        QObject::connect(row.clear, &QPushButton::clicked, dialog, [this, s = slot.slot] {
            if (events_) {
                events_->clearHotkeyClicked(s);
            }
        });
        hotkeyGrid->addWidget(row.title, gridRow, 0);
        hotkeyGrid->addWidget(row.value, gridRow, 1);
        hotkeyGrid->addWidget(row.record, gridRow, 2);
        hotkeyGrid->addWidget(row.clear, gridRow, 3);
        hotkeyRows_.push_back(row);
        ++gridRow;
    }

    // General switches, each with the reason when it is unavailable.
    auto* general = new QGroupBox(QStringLiteral("General"), dialog);
    auto* generalColumn = new QVBoxLayout(general);
    launchAtLogin_ = new QCheckBox(QStringLiteral("Launch at login"), general);
    launchAtLogin_->setObjectName(QStringLiteral("launchAtLoginCheckbox"));
    launchAtLoginInfo_ = infoLabel(QStringLiteral("launchAtLoginInfoLabel"), general);
    hideMenuBarIcon_ = new QCheckBox(general);
    hideMenuBarIcon_->setObjectName(QStringLiteral("hideMenuBarIconCheckbox"));
    hideMenuBarIconInfo_ = infoLabel(QStringLiteral("hideMenuBarIconInfoLabel"), general);
    restoreWindowSize_ = new QCheckBox(QStringLiteral("Restore window size on unsnap"), general);
    restoreWindowSize_->setObjectName(QStringLiteral("restoreWindowSizeOnUnsnapCheckbox"));
    QObject::connect(launchAtLogin_, &QCheckBox::clicked, dialog, [this](bool on) {
        if (events_) {
            events_->launchAtLoginChanged(on);
        }
    });
    QObject::connect(hideMenuBarIcon_, &QCheckBox::clicked, dialog, [this](bool on) {
        if (events_) {
            events_->hideMenuBarIconChanged(on);
        }
    });
    QObject::connect(restoreWindowSize_, &QCheckBox::clicked, dialog, [this](bool on) {
        if (events_) {
            events_->restoreWindowSizeOnUnsnapChanged(on);
        }
    });
    for (QWidget* widget :
         {static_cast<QWidget*>(launchAtLogin_), static_cast<QWidget*>(launchAtLoginInfo_),
          static_cast<QWidget*>(hideMenuBarIcon_), static_cast<QWidget*>(hideMenuBarIconInfo_),
          static_cast<QWidget*>(restoreWindowSize_)}) {
        generalColumn->addWidget(widget);
    }

    closeButton_ = plainButton(QStringLiteral("Close"), QStringLiteral("closeButton"), dialog);
    QObject::connect(closeButton_, &QPushButton::clicked, dialog, [this] {
        if (events_) {
            events_->closeClicked();
        }
    });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(closeButton_);

    auto* layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(14);
    layout->addWidget(snapping);
    layout->addWidget(hotkeys);
    layout->addWidget(general);
    layout->addLayout(buttons);
    // As large as the contents ask, never resized by hand: grows with the font and the scale.
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void PreferencesWindow::reportSnapRow(SnapCombination row) {
    if (displaying_ || !events_) {
        return;
    }
    const auto& boxes = row == SnapCombination::Single ? singleBoxes_ : multiBoxes_;
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (boxes[i]->isChecked()) {
            mask |= boxBits_[i];
        }
    }
    events_->snapModifiersChanged(row, mask);
}

void PreferencesWindow::display(const PreferencesForm& form) {
    displaying_ = true;
    const double units = std::clamp(form.cellMarginPoints * kSliderUnitsPerPoint, 0.0,
                                    double(marginSlider_->maximum()));
    // A value the slider shows already stays as it is (12.7 is not rounded to 12.70…).
    if (std::abs(marginSlider_->value() - units) >= 0.5) {
        marginSlider_->setValue(int(std::lround(units)));
    }
    marginValueLabel_->setText(form.cellMarginText);

    for (HotkeyRowWidgets& row : hotkeyRows_) {
        for (const PreferencesHotkeyRow& shown : form.hotkeys) {
            if (shown.slot != row.slot) {
                continue;
            }
            row.title->setText(shown.title);
            row.value->setText(shown.value);
            QFont font = row.value->font();
            font.setItalic(shown.recording);
            row.value->setFont(font);
            row.record->setText(shown.recording ? QStringLiteral("Recording…")
                                                : QStringLiteral("Record"));
            row.record->setAccessibleName(QStringLiteral("Record ") + shown.title);
            row.clear->setAccessibleName(QStringLiteral("Clear ") + shown.title);
        }
    }

    const auto showBoxes = [&](std::array<QCheckBox*, 4>& boxes, std::uint32_t mask,
                               const QString& prefix) {
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            const ModifierBox& box = form.modifierBoxes[i];
            boxBits_[i] = box.bit;
            boxes[i]->setText(box.title);
            boxes[i]->setObjectName(prefix + objectWord(box.bit) + QStringLiteral("Checkbox"));
            boxes[i]->setChecked((mask & box.bit) != 0);
        }
    };
    showBoxes(singleBoxes_, form.singleSnapModifiers, QStringLiteral("single"));
    showBoxes(multiBoxes_, form.multiSnapModifiers, QStringLiteral("multi"));

    launchAtLogin_->setChecked(form.launchAtLogin);
    launchAtLogin_->setEnabled(form.launchAtLoginEnabled);
    launchAtLoginInfo_->setText(form.launchAtLoginInfo);
    launchAtLoginInfo_->setVisible(!form.launchAtLoginInfo.isEmpty());
    hideMenuBarIcon_->setText(form.hideMenuBarIconTitle);
    hideMenuBarIcon_->setChecked(form.hideMenuBarIcon);
    hideMenuBarIcon_->setEnabled(form.hideMenuBarIconEnabled);
    hideMenuBarIconInfo_->setText(form.hideMenuBarIconInfo);
    hideMenuBarIconInfo_->setVisible(!form.hideMenuBarIconInfo.isEmpty());
    restoreWindowSize_->setChecked(form.restoreWindowSizeOnUnsnap);
    displaying_ = false;
}

void PreferencesWindow::present() {
    if (!dialog_->isVisible()) {
        // Each opening starts at the top of the form.
        marginSlider_->setFocus(Qt::OtherFocusReason);
    }
    presentWindow(*dialog_, nativeWindows_);
}

void PreferencesWindow::close() {
    dialog_->hide();
}

bool PreferencesWindow::isVisible() const {
    return dialog_->isVisible();
}

} // namespace paneforge
