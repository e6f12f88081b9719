#pragma once

#include "core/input/hotkey_formatter.h"

namespace paneforge {

// The current keyboard layout input source and its 'uchr' data, read afresh for every
// currentLayout() call (the user may switch layouts at any time).
class MacKeyboardLayoutProvider final : public KeyboardLayoutProvider {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override;
};

// What a key types in a layout of MacKeyboardLayoutProvider: UCKeyTranslate's "display" action
// without modifiers, upper-cased. Nothing when the translation fails or yields no characters (a
// dead key, a key that types nothing).
class MacKeyTranslator final : public KeyboardKeyTranslator {
public:
    std::optional<QString> translate(std::uint32_t keyCode,
                                     const KeyboardLayout& layout) const override;
};

} // namespace paneforge
