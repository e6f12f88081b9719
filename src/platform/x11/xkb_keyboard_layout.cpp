#include "platform/x11/xkb_keyboard_layout.h"

#include "core/diagnostics/logger_factory.h"
#include "core/input/key_code_table.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace paneforge {

XkbKeyboardLayout::XkbKeyboardLayout(xkb_keymap* keymap, std::uint32_t group)
    : keymap_(keymap)
    , group_(group) {}

XkbKeyboardLayout::~XkbKeyboardLayout() {
    xkb_keymap_unref(keymap_);
}

XkbKeyboardLayoutProvider::XkbKeyboardLayoutProvider(const char* displayName)
    : client_(displayName) {
    const auto logger = LoggerFactory::makeLogger(QStringLiteral("XkbKeyboardLayout"));
    if (!client_.isValid()) {
        logger.error(QStringLiteral("XkbKeyboardLayout: cannot connect to the X server"));
        return;
    }
    if (!xkb_x11_setup_xkb_extension(
            client_.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr)) {
        logger.error(QStringLiteral("XkbKeyboardLayout: the X server has no usable XKB extension"));
        return;
    }
    deviceId_ = xkb_x11_get_core_keyboard_device_id(client_.get());
    context_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
}

XkbKeyboardLayoutProvider::~XkbKeyboardLayoutProvider() {
    if (context_) {
        xkb_context_unref(context_);
    }
}

bool XkbKeyboardLayoutProvider::isConnected() const {
    return client_.isValid() && context_ && deviceId_ >= 0;
}

std::shared_ptr<const KeyboardLayout> XkbKeyboardLayoutProvider::currentLayout() const {
    if (!isConnected()) {
        return nullptr;
    }
    xkb_keymap* keymap = xkb_x11_keymap_new_from_device(context_, client_.get(), deviceId_,
                                                        XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap) {
        return nullptr;
    }
    xkb_state* state = xkb_x11_state_new_from_device(keymap, client_.get(), deviceId_);
    if (!state) {
        xkb_keymap_unref(keymap);
        return nullptr;
    }
    const xkb_layout_index_t group = xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE);
    xkb_state_unref(state);
    return std::make_shared<const XkbKeyboardLayout>(keymap, group);
}

std::optional<QString> XkbKeyTranslator::translate(std::uint32_t keyCode,
                                                   const KeyboardLayout& layout) const {
    const auto* xkbLayout = dynamic_cast<const XkbKeyboardLayout*>(&layout);
    const auto x11Keycode = KeyCodeTable::x11KeycodeFromMac(keyCode);
    if (!xkbLayout || !x11Keycode) {
        return std::nullopt;
    }
    // The layout's group without modifiers: the key as its cap shows it.
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(xkbLayout->keymap(), *x11Keycode,
                                                       xkbLayout->group(), 0, &symbols);
    if (count <= 0) {
        return std::nullopt;
    }
    const char32_t character = xkb_keysym_to_utf32(symbols[0]);
    const bool printable = character >= 0x20 && !(character >= 0x7f && character < 0xa0);
    if (!printable) {
        return std::nullopt;
    }
    return QString::fromUcs4(&character, 1).toUpper();
}

} // namespace paneforge
