#include "core/input/hotkey_formatter.h"

#include <QStringList>
#include <array>
#include <utility>

namespace paneforge {

namespace {

constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 4> kFlagBits = {{
    {ModifierMapper::kCommandFlag, modifier_bits::kCommand},
    {ModifierMapper::kOptionFlag, modifier_bits::kOption},
    {ModifierMapper::kControlFlag, modifier_bits::kControl},
    {ModifierMapper::kShiftFlag, modifier_bits::kShift},
}};

} // namespace

std::uint32_t ModifierMapper::toCarbonModifiers(std::uint32_t flags) {
    std::uint32_t mask = 0;
    for (const auto& [flag, bit] : kFlagBits) {
        if (flags & flag) {
            mask |= bit;
        }
    }
    return mask;
}

std::uint32_t ModifierMapper::toEventFlags(std::uint32_t carbonModifiers) {
    std::uint32_t flags = 0;
    for (const auto& [flag, bit] : kFlagBits) {
        if (carbonModifiers & bit) {
            flags |= flag;
        }
    }
    return flags;
}

std::optional<QString> KeyNameProvider::translateByKeyboardLayout(std::uint32_t keyCode) const {
    // Key codes are 16-bit on every keyboard; anything larger cannot name a key.
    if (keyCode > 0xFFFF) {
        return std::nullopt;
    }
    const auto layout = layoutProvider_.currentLayout();
    if (!layout) {
        return std::nullopt;
    }
    auto text = translator_.translate(keyCode, *layout);
    if (!text || text->isEmpty()) {
        return std::nullopt;
    }
    return text->toUpper();
}

QString KeyNameProvider::getName(std::uint32_t keyCode) const {
    if (auto fixed = words_.fixedKeyName(keyCode)) {
        return *fixed;
    }
    if (auto translated = translateByKeyboardLayout(keyCode)) {
        return *translated;
    }
    return QStringLiteral("Key %1").arg(keyCode);
}

QString HotkeyFormatter::format(const std::optional<HotkeyDefinition>& hotkey) const {
    if (!hotkey) {
        return QStringLiteral("Not set");
    }
    QStringList parts = words_.hotkeyModifiers(hotkey->modifiers);
    parts.append(keyNames_.getName(hotkey->keyCode));
    return parts.join(QStringLiteral(" + "));
}

} // namespace paneforge
