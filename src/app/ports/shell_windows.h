#pragma once

#include <QString>

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

// Short informational messages, one button, in front of everything.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;
    virtual void showInformational(const QString& title, const QString& message) = 0;
};

} // namespace paneforge
