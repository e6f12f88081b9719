#pragma once

#include "platform/x11/x11_modifier_bits.h"

#include <bitset>
#include <cstdint>

namespace paneforge {

// Which modifiers are down, followed key by key. Raw input events carry no modifier state, and a
// pointer query tells the state after a whole batch, missing a modifier pressed and released within
// it; so the tap counts the keys itself through the server's modifier mapping.
class X11ModifierTracker {
public:
    // `heldAtStart`: the X modifier state when listening began, for keys whose presses were
    // never seen.
    X11ModifierTracker(const X11ModifierBits& bits, std::uint16_t heldAtStart);

    // After the server's modifier mapping changed; keys already down keep counting by the new one.
    void setModifierBits(const X11ModifierBits& bits) { bits_ = bits; }

    // A raw key press or release; true when the modifier mask changed with it (a release can come
    // twice, and keys that are no modifiers change nothing).
    bool keyChanged(std::uint32_t keycode, bool pressed);

    // The modifier_bits mask as of the last key.
    std::uint32_t modifiers() const { return modifiers_; }

private:
    std::uint32_t currentModifiers() const;

    X11ModifierBits bits_;
    std::bitset<256> heldKeys_;
    std::uint16_t heldAtStart_;
    std::uint32_t modifiers_;
};

} // namespace paneforge
