#include "core/input/key_code_table.h"

#include <algorithm>
#include <array>

namespace paneforge {

namespace {

// {macOS virtual key code, Linux evdev code}. Positions follow the ANSI layout; the ISO and JIS
// extra keys pair with the evdev keys at the same place (102nd key, Yen, Ro, keypad comma).
constexpr auto kEntries = std::to_array<KeyCodeTable::Entry>({
    // letters
    {0x00, 30}, // A
    {0x0B, 48}, // B
    {0x08, 46}, // C
    {0x02, 32}, // D
    {0x0E, 18}, // E
    {0x03, 33}, // F
    {0x05, 34}, // G
    {0x04, 35}, // H
    {0x22, 23}, // I
    {0x26, 36}, // J
    {0x28, 37}, // K
    {0x25, 38}, // L
    {0x2E, 50}, // M
    {0x2D, 49}, // N
    {0x1F, 24}, // O
    {0x23, 25}, // P
    {0x0C, 16}, // Q
    {0x0F, 19}, // R
    {0x01, 31}, // S
    {0x11, 20}, // T
    {0x20, 22}, // U
    {0x09, 47}, // V
    {0x0D, 17}, // W
    {0x07, 45}, // X
    {0x10, 21}, // Y
    {0x06, 44}, // Z
    // digits row
    {0x12, 2},  // 1
    {0x13, 3},  // 2
    {0x14, 4},  // 3
    {0x15, 5},  // 4
    {0x17, 6},  // 5
    {0x16, 7},  // 6
    {0x1A, 8},  // 7
    {0x1C, 9},  // 8
    {0x19, 10}, // 9
    {0x1D, 11}, // 0
    // punctuation
    {0x1B, 12},  // minus
    {0x18, 13},  // equal
    {0x21, 26},  // left bracket
    {0x1E, 27},  // right bracket
    {0x29, 39},  // semicolon
    {0x27, 40},  // quote
    {0x32, 41},  // grave
    {0x2A, 43},  // backslash
    {0x2B, 51},  // comma
    {0x2F, 52},  // period
    {0x2C, 53},  // slash
    {0x0A, 86},  // ISO section (102nd key)
    {0x5D, 124}, // JIS yen
    {0x5E, 89},  // JIS underscore (ro)
    // editing and whitespace
    {0x24, 28},  // Return
    {0x30, 15},  // Tab
    {0x31, 57},  // Space
    {0x33, 14},  // Delete (backspace)
    {0x35, 1},   // Escape
    {0x75, 111}, // forward delete
    {0x72, 110}, // Help (Insert on PC keyboards)
    {0x73, 102}, // Home
    {0x77, 107}, // End
    {0x74, 104}, // Page Up
    {0x79, 109}, // Page Down
    // arrows
    {0x7B, 105}, // left
    {0x7C, 106}, // right
    {0x7D, 108}, // down
    {0x7E, 103}, // up
    // function keys
    {0x7A, 59},  // F1
    {0x78, 60},  // F2
    {0x63, 61},  // F3
    {0x76, 62},  // F4
    {0x60, 63},  // F5
    {0x61, 64},  // F6
    {0x62, 65},  // F7
    {0x64, 66},  // F8
    {0x65, 67},  // F9
    {0x6D, 68},  // F10
    {0x67, 87},  // F11
    {0x6F, 88},  // F12
    {0x69, 183}, // F13
    {0x6B, 184}, // F14
    {0x71, 185}, // F15
    {0x6A, 186}, // F16
    {0x40, 187}, // F17
    {0x4F, 188}, // F18
    {0x50, 189}, // F19
    {0x5A, 190}, // F20
    // keypad
    {0x52, 82},  // 0
    {0x53, 79},  // 1
    {0x54, 80},  // 2
    {0x55, 81},  // 3
    {0x56, 75},  // 4
    {0x57, 76},  // 5
    {0x58, 77},  // 6
    {0x59, 71},  // 7
    {0x5B, 72},  // 8
    {0x5C, 73},  // 9
    {0x41, 83},  // decimal
    {0x43, 55},  // multiply
    {0x45, 78},  // plus
    {0x4E, 74},  // minus
    {0x4B, 98},  // divide
    {0x4C, 96},  // Enter
    {0x51, 117}, // equals
    {0x47, 69},  // Clear (Num Lock on PC keyboards)
    {0x5F, 95},  // JIS keypad comma
    // media and input-method keys
    {0x48, 115}, // volume up
    {0x49, 114}, // volume down
    {0x4A, 113}, // mute
    {0x66, 123}, // JIS Eisu (Hanja position)
    {0x68, 122}, // JIS Kana (Hangeul position)
    // modifiers
    {0x38, 42},  // Shift
    {0x3C, 54},  // right Shift
    {0x3B, 29},  // Control
    {0x3E, 97},  // right Control
    {0x3A, 56},  // Option (Alt)
    {0x3D, 100}, // right Option (AltGr)
    {0x37, 125}, // Command (left Super)
    {0x36, 126}, // right Command (right Super)
    {0x39, 58},  // Caps Lock
    {0x3F, 464}, // Function
});

template <typename Key, typename Value>
std::optional<std::uint32_t> lookup(std::uint32_t code, Key key, Value value) {
    const auto it =
        std::find_if(kEntries.begin(), kEntries.end(),
                     [&](const KeyCodeTable::Entry& entry) { return entry.*key == code; });
    if (it == kEntries.end()) {
        return std::nullopt;
    }
    return (*it).*value;
}

} // namespace

std::span<const KeyCodeTable::Entry> KeyCodeTable::entries() {
    return kEntries;
}

std::optional<std::uint32_t> KeyCodeTable::evdevFromMac(std::uint32_t macKeyCode) {
    return lookup(macKeyCode, &Entry::macKeyCode, &Entry::evdevCode);
}

std::optional<std::uint32_t> KeyCodeTable::macFromEvdev(std::uint32_t evdevCode) {
    return lookup(evdevCode, &Entry::evdevCode, &Entry::macKeyCode);
}

std::optional<std::uint32_t> KeyCodeTable::x11KeycodeFromMac(std::uint32_t macKeyCode) {
    const auto evdev = evdevFromMac(macKeyCode);
    if (!evdev) {
        return std::nullopt;
    }
    return *evdev + kX11KeycodeOffset;
}

std::optional<std::uint32_t> KeyCodeTable::macFromX11Keycode(std::uint32_t x11Keycode) {
    if (x11Keycode < kX11KeycodeOffset) {
        return std::nullopt;
    }
    return macFromEvdev(x11Keycode - kX11KeycodeOffset);
}

bool KeyCodeTable::isModifierKey(std::uint32_t macKeyCode) {
    using namespace mac_key_codes;
    switch (macKeyCode) {
    case kShift:
    case kRightShift:
    case kControl:
    case kRightControl:
    case kOption:
    case kRightOption:
    case kCommand:
    case kRightCommand:
    case kCapsLock:
    case kFunction:
        return true;
    default:
        return false;
    }
}

} // namespace paneforge
