#include "core/input/hotkey_formatter.h"

#include "core/input/key_code_table.h"

#include <QStringList>
#include <array>
#include <utility>

namespace paneforge {

namespace {

struct ModifierSymbol {
    std::uint32_t bit;
    const char16_t* symbol;
};

// Command, Option, Control, Shift: the product's own order, not the usual menu order.
constexpr std::array<ModifierSymbol, 4> kSymbols = {{{modifier_bits::kCommand, u"\u2318"},
                                                     {modifier_bits::kOption, u"\u2325"},
                                                     {modifier_bits::kControl, u"\u2303"},
                                                     {modifier_bits::kShift, u"\u21E7"}}};

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

std::optional<QString> KeyNameProvider::fixedName(std::uint32_t keyCode) {
    switch (keyCode) {
    case mac_key_codes::kReturn:
        return QStringLiteral("\u21A9");
    case mac_key_codes::kSpace:
        return QStringLiteral("Space");
    case mac_key_codes::kEscape:
        return QStringLiteral("\u238B");
    case mac_key_codes::kLeftArrow:
        return QStringLiteral("\u2190");
    case mac_key_codes::kRightArrow:
        return QStringLiteral("\u2192");
    case mac_key_codes::kDownArrow:
        return QStringLiteral("\u2193");
    case mac_key_codes::kUpArrow:
        return QStringLiteral("\u2191");
    default:
        return std::nullopt;
    }
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
    if (auto fixed = fixedName(keyCode)) {
        return *fixed;
    }
    if (auto translated = translateByKeyboardLayout(keyCode)) {
        return *translated;
    }
    return QStringLiteral("Key %1").arg(keyCode);
}

QString HotkeyFormatter::modifierSymbols(std::uint32_t modifiers) {
    QString symbols;
    for (const auto& [bit, symbol] : kSymbols) {
        if (modifiers & bit) {
            symbols += QString::fromUtf16(symbol);
        }
    }
    return symbols;
}

QString HotkeyFormatter::format(const std::optional<HotkeyDefinition>& hotkey) const {
    if (!hotkey) {
        return QStringLiteral("Not set");
    }
    QStringList parts;
    for (const auto& [bit, symbol] : kSymbols) {
        if (hotkey->modifiers & bit) {
            parts.append(QString::fromUtf16(symbol));
        }
    }
    parts.append(keyNames_.getName(hotkey->keyCode));
    return parts.join(QStringLiteral(" + "));
}

} // namespace paneforge
