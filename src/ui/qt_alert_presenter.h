#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/shell_windows.h"

namespace paneforge {

// Alerts as Qt message boxes: the title in bold, the message below, one OK button (Return and
// Escape both close it). The box does not block the event loop, so hot keys and the snapping go
// on while it is open.
class QtAlertPresenter final : public AlertPresenter {
public:
    explicit QtAlertPresenter(NativeWindows& nativeWindows)
        : nativeWindows_(nativeWindows) {}

    void showInformational(const QString& title, const QString& message) override;
    // A warning box above every window (the zone editor's included), application-modal, with
    // the confirming button first; Escape cancels.
    void confirm(const AlertConfirmation& question, std::function<void(bool)> answered) override;

private:
    NativeWindows& nativeWindows_;
};

} // namespace paneforge
