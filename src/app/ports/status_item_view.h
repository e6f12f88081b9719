#pragma once

#include <functional>

namespace paneforge {

// What the status menu's rows do; the application controller fills them in.
struct StatusMenuActions {
    std::function<void()> quit;
};

// The agent's icon in the menu bar or system tray, with its menu.
class StatusItemView {
public:
    virtual ~StatusItemView() = default;
    // Shows the icon. Returns whether a tray host shows it now; without one the agent runs on and
    // the icon appears by itself when a tray host starts.
    virtual bool show() = 0;
};

} // namespace paneforge
