#pragma once

#include <array>
#include <cstdint>
#include <xcb/xcb.h>

namespace paneforge {

// Which X modifier bits stand for Alt (Option), Super (Command) and Num Lock on this server.
// Shift, Lock and Control are fixed by the protocol; the others live in Mod1..Mod5 as the
// server's modifier mapping says (usually Alt = Mod1, Num Lock = Mod2, Super = Mod4).
struct X11ModifierBits {
    std::uint16_t alt = XCB_MOD_MASK_1;
    std::uint16_t super = XCB_MOD_MASK_4;
    std::uint16_t numLock = XCB_MOD_MASK_2;
    // The X modifier bits each key code sets while it is held (none for keys that are no
    // modifier).
    std::array<std::uint8_t, 256> keyBits{};

    friend bool operator==(const X11ModifierBits&, const X11ModifierBits&) = default;

    // Reads the modifier mapping; keeps the usual bits for whatever the server does not map.
    static X11ModifierBits read(xcb_connection_t* connection);

    // X state mask -> the stored modifier mask (modifier_bits: Command 256, Shift 512,
    // Option 2048, Control 4096). Lock, Num Lock and the button bits are not modifiers of a
    // combination.
    std::uint32_t toModifierMask(std::uint16_t state) const;
    // Stored modifier mask -> X modifiers for a key grab.
    std::uint16_t toXModifiers(std::uint32_t modifierMask) const;
};

} // namespace paneforge
