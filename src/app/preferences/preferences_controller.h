#pragma once

#include "app/input/hotkey_slots.h"
#include "app/runtime/notification_center.h"
#include "core/config/config_store.h"

#include <optional>

namespace paneforge {

// The one writer of the user's settings outside the zone editor, layout switching and the
// restore. Every setter loads the file afresh (the defaults when it cannot be read, so a corrupt
// file is replaced by the defaults plus this one change), saves at once (a failed save is
// dropped: the store logs it) and then posts its notifications: a hot key's own, then
// "PaneforgeConfigChanged". Every getter loads the file afresh and gives the default for a
// setting that is absent. No copy of the configuration is kept.
class PreferencesController {
public:
    PreferencesController(ConfigStore& store, NotificationCenter& notifications);

    void setCellMarginPoints(double points);
    // None clears the hot key (its key is then left out of the file).
    void setHotkey(HotkeySlotId slot, std::optional<HotkeyDefinition> hotkey);
    void setSingleSnapModifiers(ModifierDefinition modifiers);
    void setMultiSnapModifiers(ModifierDefinition modifiers);
    void setLaunchAtLogin(bool on);
    void setHideMenuBarIcon(bool on);
    void setRestoreWindowSizeOnUnsnap(bool on);
    void setHasCompletedQuickStart(bool on);

    double getCellMarginPoints() const;
    std::optional<HotkeyDefinition> getHotkey(HotkeySlotId slot) const;
    ModifierDefinition getSingleSnapModifiers() const;
    ModifierDefinition getMultiSnapModifiers() const;
    bool getLaunchAtLogin() const;
    bool getHideMenuBarIcon() const;
    bool getRestoreWindowSizeOnUnsnap() const;

    // The whole configuration in one read, the defaults when the file cannot be read; for a view
    // that shows every setting at once.
    PaneforgeConfig load() const;

private:
    template <typename Change> void change(Change change, std::optional<Notification> first);

    ConfigStore& store_;
    NotificationCenter& notifications_;
};

} // namespace paneforge
