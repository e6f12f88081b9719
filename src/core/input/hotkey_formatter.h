#pragma once

#include "core/input/hotkey_definition.h"
#include "core/policies/platform_words.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <optional>

namespace paneforge {

// Maps the platform's device-independent modifier flags (Command 0x100000, Option 0x80000,
// Control 0x40000, Shift 0x20000) to the stored mask; every other bit is ignored.
namespace ModifierMapper {
std::uint32_t toCarbonModifiers(std::uint32_t flags);
// The same mapping for the flags of a global mouse or modifier event.
inline std::uint32_t toCarbonModifiersFromEventFlags(std::uint32_t eventFlags) {
    return toCarbonModifiers(eventFlags);
}
// The platform flags of a stored mask; the inverse of toCarbonModifiers for the four modifiers.
std::uint32_t toEventFlags(std::uint32_t carbonModifiers);

inline constexpr std::uint32_t kCommandFlag = 0x00100000;
inline constexpr std::uint32_t kOptionFlag = 0x00080000;
inline constexpr std::uint32_t kControlFlag = 0x00040000;
inline constexpr std::uint32_t kShiftFlag = 0x00020000;
} // namespace ModifierMapper

// The user's current keyboard layout, as the platform describes it (opaque here).
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;
};

class KeyboardLayoutProvider {
public:
    virtual ~KeyboardLayoutProvider() = default;
    // None when the platform reports no usable layout.
    virtual std::shared_ptr<const KeyboardLayout> currentLayout() const = 0;
};

class KeyboardKeyTranslator {
public:
    virtual ~KeyboardKeyTranslator() = default;
    // The character(s) the key types without modifiers, upper-cased; none for dead keys and keys
    // that type nothing.
    virtual std::optional<QString> translate(std::uint32_t keyCode,
                                             const KeyboardLayout& layout) const = 0;
};

// Key names: fixed names for a few keys (the platform's words, PlatformWords), the keyboard
// layout for the rest, "Key <code>" when the layout has no character for it.
class KeyNameProvider {
public:
    KeyNameProvider(const KeyboardLayoutProvider& layoutProvider,
                    const KeyboardKeyTranslator& translator,
                    PlatformWords words = PlatformWords::current())
        : layoutProvider_(layoutProvider)
        , translator_(translator)
        , words_(words) {}

    QString getName(std::uint32_t keyCode) const;
    std::optional<QString> translateByKeyboardLayout(std::uint32_t keyCode) const;

private:
    const KeyboardLayoutProvider& layoutProvider_;
    const KeyboardKeyTranslator& translator_;
    PlatformWords words_;
};

// "⌘ + ⇧ + E" on macOS, "Super + Shift + E" on Linux: the modifiers as PlatformWords orders and
// names them, then the key name, joined by " + "; "Not set" without a hot key.
class HotkeyFormatter {
public:
    explicit HotkeyFormatter(const KeyNameProvider& keyNames,
                             PlatformWords words = PlatformWords::current())
        : keyNames_(keyNames)
        , words_(words) {}
    QString format(const std::optional<HotkeyDefinition>& hotkey) const;

private:
    const KeyNameProvider& keyNames_;
    PlatformWords words_;
};

} // namespace paneforge
