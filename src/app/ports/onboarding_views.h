#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace paneforge {

// What the quick start window shows for one page: the page itself and its navigation.
struct QuickStartChrome {
    QString title;
    QString body;
    QString stepText; // "1 of 3"
    std::optional<QString> primaryActionTitle;
    bool backEnabled = false;
    QString nextTitle; // "Next", or "Done" on the last page

    friend bool operator==(const QuickStartChrome&, const QuickStartChrome&) = default;
};

// The quick start window's buttons and its closing, as the controller hears them.
struct QuickStartActions {
    std::function<void()> next;
    std::function<void()> back;
    std::function<void()> skip;
    std::function<void()> primaryAction;
    // However the window was closed: Done, Skip, Escape or the title bar.
    std::function<void()> closed;
};

// The quick start window: made once, shown again from the first page on every show.
class QuickStartView {
public:
    virtual ~QuickStartView() = default;
    virtual void showPage(const QuickStartChrome& chrome) = 0;
    // Centred where the user looks, in front, with the keyboard.
    virtual void present() = 0;
    virtual void dismiss() = 0;
    virtual bool isVisible() const = 0;
};

// What the permission coach says: the missing permission and the one thing to do about it.
struct PermissionCoachContent {
    QString title;
    QString message;
    QString buttonTitle;

    friend bool operator==(const PermissionCoachContent&, const PermissionCoachContent&) = default;
};

// The small floating window that tells the user which permission is missing.
class PermissionCoachView {
public:
    virtual ~PermissionCoachView() = default;
    // Shows the content in front, with the keyboard; an open coach only takes the new content
    // and comes to the front, so that a repeated check does not move it under the user's hands.
    virtual void present(const PermissionCoachContent& content) = 0;
    virtual void dismiss() = 0;
    virtual bool isVisible() const = 0;
};

} // namespace paneforge
