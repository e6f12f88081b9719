#pragma once

#include "app/input/hotkey_slots.h"

#include <QString>
#include <array>
#include <cstdint>
#include <vector>

namespace paneforge {

enum class SnapCombination { Single, Multi };

// One modifier check box of a snap row: its mask bit and the platform's word for it.
struct ModifierBox {
    std::uint32_t bit = 0;
    QString title;
};

struct PreferencesHotkeyRow {
    HotkeySlotId slot = HotkeySlotId::OpenEditor;
    QString title; // "Open Zone Editor"
    QString value; // the formatter's text, "Not set", or the prompt while recording
    bool recording = false;
};

// Everything the preferences form shows, with the words already chosen: the view only lays it
// out. Controls that the user changes carry the value from the file.
struct PreferencesForm {
    double cellMarginPoints = 0;
    QString cellMarginText; // "12 pt"
    std::vector<PreferencesHotkeyRow> hotkeys;
    // The four boxes of each snap row, in the settings' order.
    std::array<ModifierBox, 4> modifierBoxes;
    std::uint32_t singleSnapModifiers = 0;
    std::uint32_t multiSnapModifiers = 0;
    bool launchAtLogin = false;
    bool launchAtLoginEnabled = false;
    QString launchAtLoginInfo; // empty while the box is enabled
    QString hideMenuBarIconTitle;
    bool hideMenuBarIcon = false;
    bool hideMenuBarIconEnabled = false;
    QString hideMenuBarIconInfo; // empty while the box is enabled
    bool restoreWindowSizeOnUnsnap = true;
};

// What the user does in the preferences form; the view reports each change as it happens.
class PreferencesFormEvents {
public:
    virtual ~PreferencesFormEvents() = default;
    virtual void cellMarginChanged(double points) = 0;
    virtual void recordHotkeyClicked(HotkeySlotId slot) = 0;
    virtual void clearHotkeyClicked(HotkeySlotId slot) = 0;
    // The row's mask from its checked boxes (0 with none).
    virtual void snapModifiersChanged(SnapCombination row, std::uint32_t mask) = 0;
    virtual void launchAtLoginChanged(bool on) = 0;
    virtual void hideMenuBarIconChanged(bool on) = 0;
    virtual void restoreWindowSizeOnUnsnapChanged(bool on) = 0;
    virtual void closeClicked() = 0;
    // The window was closed (any way) or lost the keyboard.
    virtual void windowDeactivated() = 0;
};

// The preferences window, titled "Preferences": a plain form that saves on every change.
class PreferencesView {
public:
    virtual ~PreferencesView() = default;
    // Shows the form's values without reporting them back as changes.
    virtual void display(const PreferencesForm& form) = 0;
    // Centred on the display the user is looking at, in front, with the keyboard.
    virtual void present() = 0;
    virtual void close() = 0;
    virtual bool isVisible() const = 0;
};

} // namespace paneforge
