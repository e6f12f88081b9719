#pragma once

#include "app/ports/display_services.h"
#include "core/layouts/display_identifier.h"

#include <QString>
#include <functional>
#include <vector>

namespace paneforge {

// One entry of the "Zone Editor…" submenu.
struct StatusMenuDisplay {
    DisplayId displayId = 0;
    QString title;
    DisplayIdentifier identifier;
};

// What the status menu's rows do; the application controller fills them in.
struct StatusMenuActions {
    std::function<void()> openLayoutSelector;
    std::function<void()> nextLayout;
    std::function<void()> previousLayout;
    std::function<void()> moveToNextDisplay;
    // The displays listed under "Zone Editor…", asked afresh each time the menu opens.
    std::function<std::vector<StatusMenuDisplay>()> displays;
    std::function<void(DisplayId)> openZoneEditorForDisplay;
    std::function<void()> openPreferences;
    std::function<void()> backupSettings;
    std::function<void()> restoreSettings;
    std::function<void()> openQuickStart;
    std::function<void()> revealLogFile;
    std::function<void()> checkForUpdates;
    std::function<void()> openAbout;
    std::function<void()> quit;
};

// The agent's icon in the menu bar or system tray, with its menu. Destroying it removes the icon.
class StatusItemView {
public:
    virtual ~StatusItemView() = default;
    // Shows the icon. Returns whether a tray host shows it now; without one the agent runs on and
    // the icon appears by itself when a tray host starts.
    virtual bool show() = 0;
};

} // namespace paneforge
