#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/onboarding_views.h"

#include <QDialog>
#include <functional>

class QLabel;
class QPushButton;

namespace paneforge {

// The permission coach: a small floating window titled "Paneforge" with what is missing and one
// button that leads to it. Escape and the title bar close it; closing only hides it.
class PermissionCoachWindow final : public QDialog, public PermissionCoachView {
    Q_OBJECT

public:
    PermissionCoachWindow(NativeWindows& nativeWindows, std::function<void()> onButton);

    void present(const PermissionCoachContent& content) override;
    void dismiss() override;
    bool isVisible() const override { return QDialog::isVisible(); }

private:
    NativeWindows& nativeWindows_;
    QLabel* title_;
    QLabel* message_;
    QPushButton* button_;
};

} // namespace paneforge
