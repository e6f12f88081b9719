#pragma once

#include <QString>
#include <functional>

namespace paneforge {

// One of Paneforge's own windows that the controllers open (about, preferences). Showing it
// centres it on the display the user is looking at, brings it to the front and gives it the
// keyboard, even though Paneforge is a background agent.
class ShellWindow {
public:
    virtual ~ShellWindow() = default;
    virtual void show() = 0;
    virtual bool isVisible() const = 0;
};

// A question with a confirming and a cancelling button (the confirming one first).
struct AlertConfirmation {
    QString message;
    QString informativeText;
    QString confirmButton;
    QString cancelButton;
};

// Short messages in front of everything. They never block: the answer to a question comes later.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;
    // One button.
    virtual void showInformational(const QString& title, const QString& message) = 0;
    // A warning; `answered` gets true only for the confirming button.
    virtual void confirm(const AlertConfirmation& question, std::function<void(bool)> answered) = 0;
};

} // namespace paneforge
