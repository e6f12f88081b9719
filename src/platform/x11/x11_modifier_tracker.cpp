#include "platform/x11/x11_modifier_tracker.h"

namespace paneforge {

X11ModifierTracker::X11ModifierTracker(const X11ModifierBits& bits, std::uint16_t heldAtStart)
    : bits_(bits)
    , heldAtStart_(heldAtStart)
    , modifiers_(currentModifiers()) {}

bool X11ModifierTracker::keyChanged(std::uint32_t keycode, bool pressed) {
    if (keycode >= heldKeys_.size()) {
        return false; // X key codes end at 255; nothing beyond can be a modifier
    }
    heldKeys_[keycode] = pressed;
    if (!pressed) {
        // A key held since before the start is up now.
        heldAtStart_ = static_cast<std::uint16_t>(heldAtStart_ & ~bits_.keyBits[keycode]);
    }
    const std::uint32_t modifiers = currentModifiers();
    if (modifiers == modifiers_) {
        return false;
    }
    modifiers_ = modifiers;
    return true;
}

std::uint32_t X11ModifierTracker::currentModifiers() const {
    std::uint16_t state = heldAtStart_;
    for (std::size_t key = 0; key < heldKeys_.size(); ++key) {
        if (heldKeys_[key]) {
            state |= bits_.keyBits[key];
        }
    }
    return bits_.toModifierMask(state);
}

} // namespace paneforge
