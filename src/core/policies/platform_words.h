#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>

namespace paneforge {

enum class WordStyle { MacOS, Linux };

// How Paneforge words, for the user, what differs between platforms: the four modifiers (stored
// with their macOS mask bits everywhere, modifier_bits), the keys with fixed names, the status
// icon, the launch-at-login condition. The one place that decides: every text that names a
// modifier asks it instead of testing the platform itself. macOS keeps the symbols and words of
// its own conventions; Linux reads Super, Ctrl, Alt and Shift.
class PlatformWords {
public:
    explicit constexpr PlatformWords(WordStyle style)
        : style_(style) {}

    // The words of the platform this build is for.
    static PlatformWords current();

    WordStyle style() const { return style_; }

    // The modifiers in the order the settings list them: Command, Shift, Option, Control.
    static const std::array<std::uint32_t, 4>& settingsOrder();
    // "Command", "Shift", "Option", "Control" on macOS; "Super", "Shift", "Alt", "Ctrl" on Linux.
    // Empty for any other bit.
    QString modifierName(std::uint32_t bit) const;
    // The modifiers of a mask as a hot key's text shows them: on macOS the symbols in the
    // product's order ⌘ ⌥ ⌃ ⇧ (Command, Option, Control, Shift); on Linux the names in the order
    // Super, Ctrl, Alt, Shift.
    QStringList hotkeyModifiers(std::uint32_t mask) const;
    // A combination to hold, in running text: "⌘⇧" on macOS, "Super+Shift" on Linux.
    QString heldCombination(std::uint32_t mask) const;
    // Return, Space, Escape and the arrows: "↩", "Space", "⎋", "←"… on macOS; "Return",
    // "Space", "Escape", "Left"… on Linux. None for every other key (the keyboard layout names
    // those).
    std::optional<QString> fixedKeyName(std::uint32_t keyCode) const;
    // What the status item is called: "menu bar icon" on macOS, "tray icon" on Linux.
    QString statusIconName() const;
    // Why launch at login is not offered to the running copy.
    QString launchAtLoginRequirement() const;

private:
    WordStyle style_;
};

} // namespace paneforge
