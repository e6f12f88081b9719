#include "platform/macos/mac_keyboard_layout.h"

#include "platform/macos/cf_ref.h"

#include <Carbon/Carbon.h>

namespace paneforge {

namespace {

constexpr UniCharCount kMaxCharacters = 8;

// One keyboard layout input source, retained, and its 'uchr' data, which the source owns.
class MacKeyboardLayout final : public KeyboardLayout {
public:
    // Takes over the reference of a TIS...Copy call.
    MacKeyboardLayout(CFRef<TISInputSourceRef> source, const UCKeyboardLayout* layout)
        : source_(std::move(source))
        , layout_(layout) {}

    const UCKeyboardLayout* layout() const { return layout_; }

private:
    CFRef<TISInputSourceRef> source_;
    const UCKeyboardLayout* layout_;
};

} // namespace

std::shared_ptr<const KeyboardLayout> MacKeyboardLayoutProvider::currentLayout() const {
    // TextInputSources.h: a Copy call, so the source is released by the layout.
    CFRef<TISInputSourceRef> source(TISCopyCurrentKeyboardLayoutInputSource());
    if (!source) {
        return nullptr;
    }
    // TextInputSources.h: a Get call; the CFDataRef belongs to the source.
    const auto data = static_cast<CFDataRef>(
        TISGetInputSourceProperty(source.get(), kTISPropertyUnicodeKeyLayoutData));
    if (!data || CFDataGetLength(data) <= 0) {
        return nullptr;
    }
    return std::make_shared<const MacKeyboardLayout>(
        std::move(source), reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(data)));
}

std::optional<QString> MacKeyTranslator::translate(std::uint32_t keyCode,
                                                   const KeyboardLayout& layout) const {
    const auto* macLayout = dynamic_cast<const MacKeyboardLayout*>(&layout);
    // Virtual key codes are 16-bit.
    if (!macLayout || keyCode > 0xFFFF) {
        return std::nullopt;
    }
    UInt32 deadKeyState = 0;
    UniChar characters[kMaxCharacters] = {};
    UniCharCount length = 0;
    // CarbonCore/UnicodeUtilities.h: UCKeyTranslate(layout, key code, action, modifier state,
    // keyboard type, options, dead-key state, capacity, length, characters); Events.h:
    // LMGetKbdType() is the keyboard type.
    const OSStatus status =
        UCKeyTranslate(macLayout->layout(), static_cast<UInt16>(keyCode), kUCKeyActionDisplay, 0,
                       LMGetKbdType(), 0, &deadKeyState, kMaxCharacters, &length, characters);
    if (status != noErr || length == 0) {
        return std::nullopt;
    }
    return QString(reinterpret_cast<const QChar*>(characters), static_cast<qsizetype>(length))
        .toUpper();
}

} // namespace paneforge
