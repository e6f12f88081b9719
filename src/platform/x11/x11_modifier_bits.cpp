#include "platform/x11/x11_modifier_bits.h"

#include "core/input/hotkey_definition.h"
#include "platform/x11/xcb_client.h"

#include <memory>
#include <xcb/xcb_keysyms.h>

namespace paneforge {

namespace {
constexpr xcb_keysym_t kNumLock = 0xff7f;
constexpr xcb_keysym_t kAltL = 0xffe9;
constexpr xcb_keysym_t kAltR = 0xffea;
constexpr xcb_keysym_t kMetaL = 0xffe7;
constexpr xcb_keysym_t kMetaR = 0xffe8;
constexpr xcb_keysym_t kSuperL = 0xffeb;
constexpr xcb_keysym_t kSuperR = 0xffec;
} // namespace

X11ModifierBits X11ModifierBits::read(xcb_connection_t* connection) {
    X11ModifierBits bits;
    const auto reply = owned(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!reply) {
        return bits;
    }
    std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(connection), &xcb_key_symbols_free);
    const xcb_keycode_t* keycodes = xcb_get_modifier_mapping_keycodes(reply.get());
    const int perModifier = reply->keycodes_per_modifier;
    bool altFound = false;
    bool metaBit = false;
    std::uint16_t meta = 0;
    // Rows 0..7 are Shift, Lock, Control and Mod1..Mod5; what Mod1..Mod5 mean depends on the
    // keys in them.
    for (int modifier = 0; modifier < 8; ++modifier) {
        const auto bit = static_cast<std::uint16_t>(1u << modifier);
        for (int i = 0; i < perModifier; ++i) {
            const xcb_keycode_t keycode = keycodes[modifier * perModifier + i];
            if (keycode == 0) {
                continue;
            }
            bits.keyBits[keycode] = static_cast<std::uint8_t>(bits.keyBits[keycode] | bit);
            if (modifier < 3 || !symbols) {
                continue;
            }
            for (int column = 0; column < 4; ++column) {
                const xcb_keysym_t sym = xcb_key_symbols_get_keysym(symbols.get(), keycode, column);
                if (sym == kNumLock) {
                    bits.numLock = bit;
                } else if (sym == kAltL || sym == kAltR) {
                    bits.alt = bit;
                    altFound = true;
                } else if (sym == kMetaL || sym == kMetaR) {
                    meta = bit;
                    metaBit = true;
                } else if (sym == kSuperL || sym == kSuperR) {
                    bits.super = bit;
                }
            }
        }
    }
    // Some layouts only map Meta; it then plays Alt's part.
    if (!altFound && metaBit) {
        bits.alt = meta;
    }
    return bits;
}

std::uint32_t X11ModifierBits::toModifierMask(std::uint16_t state) const {
    std::uint32_t mask = 0;
    if (state & super) {
        mask |= modifier_bits::kCommand;
    }
    if (state & XCB_MOD_MASK_SHIFT) {
        mask |= modifier_bits::kShift;
    }
    if (state & alt) {
        mask |= modifier_bits::kOption;
    }
    if (state & XCB_MOD_MASK_CONTROL) {
        mask |= modifier_bits::kControl;
    }
    return mask;
}

std::uint16_t X11ModifierBits::toXModifiers(std::uint32_t modifierMask) const {
    std::uint16_t modifiers = 0;
    if (modifierMask & modifier_bits::kCommand) {
        modifiers |= super;
    }
    if (modifierMask & modifier_bits::kShift) {
        modifiers |= XCB_MOD_MASK_SHIFT;
    }
    if (modifierMask & modifier_bits::kOption) {
        modifiers |= alt;
    }
    if (modifierMask & modifier_bits::kControl) {
        modifiers |= XCB_MOD_MASK_CONTROL;
    }
    return modifiers;
}

} // namespace paneforge
