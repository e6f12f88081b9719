#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/onboarding_views.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace paneforge {

// "Quick Start": a small floating window with one page at a time, its step ("1 of 3"), the page's
// own button when it has one, and Skip, Back and Next (Done on the last page). Escape, Skip and
// the title bar close it; closing only hides it.
class QuickStartWindow final : public QDialog, public QuickStartView {
    Q_OBJECT

public:
    QuickStartWindow(NativeWindows& nativeWindows, QuickStartActions actions);

    void showPage(const QuickStartChrome& chrome) override;
    void present() override;
    void dismiss() override;
    bool isVisible() const override { return QDialog::isVisible(); }

private:
    NativeWindows& nativeWindows_;
    QuickStartActions actions_;
    QLabel* title_;
    QLabel* body_;
    QLabel* step_;
    QPushButton* primary_;
    QPushButton* skip_;
    QPushButton* back_;
    QPushButton* next_;
};

} // namespace paneforge
