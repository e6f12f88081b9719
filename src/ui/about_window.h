#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/shell_windows.h"

#include <QDialog>
#include <memory>

namespace paneforge {

// "About Paneforge": the icon, the name, the version and one line on what Paneforge does. Made on
// first use and kept; closing it (Escape, Return, the button or the title bar) only hides it.
class AboutWindow final : public ShellWindow {
public:
    explicit AboutWindow(NativeWindows& nativeWindows);
    ~AboutWindow() override;

    void show() override;
    bool isVisible() const override;

    // The dialog, made if it was not yet.
    QDialog& dialog();

    static QString versionText();
    static QString descriptionText();

private:
    NativeWindows& nativeWindows_;
    std::unique_ptr<QDialog> dialog_;
};

} // namespace paneforge
