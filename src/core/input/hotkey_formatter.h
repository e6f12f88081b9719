#pragma once

#include "core/input/hotkey_definition.h"

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

// Key names: fixed symbols for a few keys, the keyboard layout for the rest, "Key <code>" when
// the layout has no character for it.
class KeyNameProvider {
public:
    KeyNameProvider(const KeyboardLayoutProvider& layoutProvider,
                    const KeyboardKeyTranslator& translator)
        : layoutProvider_(layoutProvider)
        , translator_(translator) {}

    QString getName(std::uint32_t keyCode) const;
    std::optional<QString> translateByKeyboardLayout(std::uint32_t keyCode) const;

    // The fixed names of Return, Space, Escape and the arrows; none for other keys.
    static std::optional<QString> fixedName(std::uint32_t keyCode);

private:
    const KeyboardLayoutProvider& layoutProvider_;
    const KeyboardKeyTranslator& translator_;
};

// "⌘ + ⇧ + E": modifiers in the fixed order Command, Option, Control, Shift, then the key name;
// "Not set" without a hot key.
class HotkeyFormatter {
public:
    explicit HotkeyFormatter(const KeyNameProvider& keyNames)
        : keyNames_(keyNames) {}
    QString format(const std::optional<HotkeyDefinition>& hotkey) const;

    // The modifier symbols of a mask in the same order, without separators ("⌘⇧").
    static QString modifierSymbols(std::uint32_t modifiers);

private:
    const KeyNameProvider& keyNames_;
};

} // namespace paneforge
