#pragma once

#include "core/input/hotkey_formatter.h"
#include "platform/x11/xcb_client.h"

#include <cstdint>
#include <memory>
#include <xcb/xcb.h>

struct xkb_context;
struct xkb_keymap;

namespace paneforge {

// One reading of the keyboard layout active on the X server: its keymap and the group (layout)
// in effect at that moment. Immutable; keeps its keymap alive.
class XkbKeyboardLayout final : public KeyboardLayout {
public:
    // Takes over one reference to `keymap`.
    XkbKeyboardLayout(xkb_keymap* keymap, std::uint32_t group);
    ~XkbKeyboardLayout() override;
    XkbKeyboardLayout(const XkbKeyboardLayout&) = delete;
    XkbKeyboardLayout& operator=(const XkbKeyboardLayout&) = delete;

    xkb_keymap* keymap() const { return keymap_; }
    std::uint32_t group() const { return group_; }

private:
    xkb_keymap* keymap_;
    std::uint32_t group_;
};

// The current keyboard layout through xkbcommon, over Paneforge's own XCB connection. Every call
// reads the server's keymap and group afresh: the user may switch layouts at any time. Nothing
// when the server cannot be reached or has no usable XKB extension.
class XkbKeyboardLayoutProvider final : public KeyboardLayoutProvider {
public:
    // displayName: nullptr for $DISPLAY.
    explicit XkbKeyboardLayoutProvider(const char* displayName = nullptr);
    ~XkbKeyboardLayoutProvider() override;
    XkbKeyboardLayoutProvider(const XkbKeyboardLayoutProvider&) = delete;
    XkbKeyboardLayoutProvider& operator=(const XkbKeyboardLayoutProvider&) = delete;

    bool isConnected() const;
    std::shared_ptr<const KeyboardLayout> currentLayout() const override;

private:
    XcbClient client_;
    xkb_context* context_ = nullptr;
    std::int32_t deviceId_ = -1;
};

// What a key types in an XkbKeyboardLayout: the key's first-level symbol in the layout's group,
// upper-cased. Keys whose symbol is no printable text (function keys, Tab, Delete, the keypad
// with Num Lock off) and key codes without an X key yield nothing. Key codes are macOS virtual
// key codes, mapped through KeyCodeTable.
class XkbKeyTranslator final : public KeyboardKeyTranslator {
public:
    std::optional<QString> translate(std::uint32_t keyCode,
                                     const KeyboardLayout& layout) const override;
};

} // namespace paneforge
