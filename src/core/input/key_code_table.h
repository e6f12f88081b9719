#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace paneforge {

// macOS virtual key codes that the input code refers to by name.
namespace mac_key_codes {
inline constexpr std::uint32_t kA = 0x00;
inline constexpr std::uint32_t kD = 0x02;
inline constexpr std::uint32_t kE = 0x0E;
inline constexpr std::uint32_t kReturn = 0x24;
inline constexpr std::uint32_t kTab = 0x30;
inline constexpr std::uint32_t kSpace = 0x31;
inline constexpr std::uint32_t kDelete = 0x33;
inline constexpr std::uint32_t kEscape = 0x35;
inline constexpr std::uint32_t kRightCommand = 0x36;
inline constexpr std::uint32_t kCommand = 0x37;
inline constexpr std::uint32_t kShift = 0x38;
inline constexpr std::uint32_t kCapsLock = 0x39;
inline constexpr std::uint32_t kOption = 0x3A;
inline constexpr std::uint32_t kControl = 0x3B;
inline constexpr std::uint32_t kRightShift = 0x3C;
inline constexpr std::uint32_t kRightOption = 0x3D;
inline constexpr std::uint32_t kRightControl = 0x3E;
inline constexpr std::uint32_t kFunction = 0x3F;
inline constexpr std::uint32_t kF1 = 0x7A;
inline constexpr std::uint32_t kLeftArrow = 0x7B;
inline constexpr std::uint32_t kRightArrow = 0x7C;
inline constexpr std::uint32_t kDownArrow = 0x7D;
inline constexpr std::uint32_t kUpArrow = 0x7E;
} // namespace mac_key_codes

// Key codes in the configuration are macOS virtual key codes on every platform, so that one
// configuration file works everywhere. Both code sets name physical key positions; this table
// pairs them for every key a hot key can use, plus the modifier keys. Linux evdev codes are the
// kernel's KEY_* values; an X11 key code is the evdev code + 8.
class KeyCodeTable {
public:
    struct Entry {
        std::uint32_t macKeyCode;
        std::uint32_t evdevCode;
    };

    static constexpr std::uint32_t kX11KeycodeOffset = 8;

    static std::span<const Entry> entries();

    static std::optional<std::uint32_t> evdevFromMac(std::uint32_t macKeyCode);
    static std::optional<std::uint32_t> macFromEvdev(std::uint32_t evdevCode);
    static std::optional<std::uint32_t> x11KeycodeFromMac(std::uint32_t macKeyCode);
    static std::optional<std::uint32_t> macFromX11Keycode(std::uint32_t x11Keycode);

    // Shift, Control, Option, Command (either side), Function and Caps Lock: keys whose press
    // alone changes modifiers rather than typing; never recorded as a hot key's key.
    static bool isModifierKey(std::uint32_t macKeyCode);
};

} // namespace paneforge
