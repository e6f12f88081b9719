#include "core/policies/platform_words.h"

#include "core/input/hotkey_definition.h"
#include "core/input/key_code_table.h"

namespace paneforge {

namespace {

struct ModifierWord {
    std::uint32_t bit;
    const char16_t* word;
};

// Command, Option, Control, Shift: the product's own order, not the usual menu order.
constexpr std::array<ModifierWord, 4> kMacSymbols = {{{modifier_bits::kCommand, u"\u2318"},
                                                      {modifier_bits::kOption, u"\u2325"},
                                                      {modifier_bits::kControl, u"\u2303"},
                                                      {modifier_bits::kShift, u"\u21E7"}}};
constexpr std::array<ModifierWord, 4> kLinuxNames = {{{modifier_bits::kCommand, u"Super"},
                                                      {modifier_bits::kControl, u"Ctrl"},
                                                      {modifier_bits::kOption, u"Alt"},
                                                      {modifier_bits::kShift, u"Shift"}}};

const std::array<ModifierWord, 4>& hotkeyOrder(WordStyle style) {
    return style == WordStyle::MacOS ? kMacSymbols : kLinuxNames;
}

} // namespace

PlatformWords PlatformWords::current() {
#if defined(Q_OS_MACOS)
    return PlatformWords(WordStyle::MacOS);
#else
    return PlatformWords(WordStyle::Linux);
#endif
}

const std::array<std::uint32_t, 4>& PlatformWords::settingsOrder() {
    static constexpr std::array<std::uint32_t, 4> kOrder = {
        modifier_bits::kCommand, modifier_bits::kShift, modifier_bits::kOption,
        modifier_bits::kControl};
    return kOrder;
}

QString PlatformWords::modifierName(std::uint32_t bit) const {
    const bool mac = style_ == WordStyle::MacOS;
    switch (bit) {
    case modifier_bits::kCommand:
        return mac ? QStringLiteral("Command") : QStringLiteral("Super");
    case modifier_bits::kShift:
        return QStringLiteral("Shift");
    case modifier_bits::kOption:
        return mac ? QStringLiteral("Option") : QStringLiteral("Alt");
    case modifier_bits::kControl:
        return mac ? QStringLiteral("Control") : QStringLiteral("Ctrl");
    default:
        return {};
    }
}

QStringList PlatformWords::hotkeyModifiers(std::uint32_t mask) const {
    QStringList words;
    for (const auto& [bit, word] : hotkeyOrder(style_)) {
        if (mask & bit) {
            words.append(QString::fromUtf16(word));
        }
    }
    return words;
}

QString PlatformWords::heldCombination(std::uint32_t mask) const {
    return hotkeyModifiers(mask).join(style_ == WordStyle::MacOS ? QString() : QStringLiteral("+"));
}

std::optional<QString> PlatformWords::fixedKeyName(std::uint32_t keyCode) const {
    const bool mac = style_ == WordStyle::MacOS;
    switch (keyCode) {
    case mac_key_codes::kReturn:
        return mac ? QStringLiteral("\u21A9") : QStringLiteral("Return");
    case mac_key_codes::kSpace:
        return QStringLiteral("Space");
    case mac_key_codes::kEscape:
        return mac ? QStringLiteral("\u238B") : QStringLiteral("Escape");
    case mac_key_codes::kLeftArrow:
        return mac ? QStringLiteral("\u2190") : QStringLiteral("Left");
    case mac_key_codes::kRightArrow:
        return mac ? QStringLiteral("\u2192") : QStringLiteral("Right");
    case mac_key_codes::kDownArrow:
        return mac ? QStringLiteral("\u2193") : QStringLiteral("Down");
    case mac_key_codes::kUpArrow:
        return mac ? QStringLiteral("\u2191") : QStringLiteral("Up");
    default:
        return std::nullopt;
    }
}

QString PlatformWords::statusIconName() const {
    return style_ == WordStyle::MacOS ? QStringLiteral("menu bar icon")
                                      : QStringLiteral("tray icon");
}

QString PlatformWords::launchAtLoginRequirement() const {
    return style_ == WordStyle::MacOS
               ? QStringLiteral("Launch at login works only when Paneforge runs from its "
                                "application bundle.")
               : QStringLiteral("Launch at login works only for an installed Paneforge (a "
                                "package, /usr/local/bin, /opt or ~/.local/bin), not for a "
                                "build run from its build folder.");
}

} // namespace paneforge
