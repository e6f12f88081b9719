#pragma once

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

    // Reads the modifier mapping; keeps the usual bits for whatever the server does not map.
    static X11ModifierBits read(xcb_connection_t* connection);

    // X state mask -> hot-key mask (Command 0x100, Shift 0x200, Option 0x800, Control 0x1000).
    // Lock, Num Lock and the button bits are not modifiers of a combination.
    std::uint32_t toHotkeyMask(std::uint16_t state) const;
    // X state mask -> the device-independent flags of a global event.
    std::uint32_t toEventFlags(std::uint16_t state) const;
    // Hot-key mask -> X modifiers for a key grab.
    std::uint16_t toXModifiers(std::uint32_t hotkeyMask) const;
};

} // namespace paneforge
