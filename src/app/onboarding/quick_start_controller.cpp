#include "app/onboarding/quick_start_controller.h"

#include "core/input/hotkey_definition.h"
#include "core/policies/quick_start_guide.h"

namespace paneforge {

namespace {

// A modifier combination in the platform's own words: the symbols on macOS ("⌘⇧"), the key
// names elsewhere ("Super+Shift").
QString modifierWords(std::uint32_t modifiers) {
    struct Name {
        std::uint32_t bit;
        const char16_t* symbol;
        const char* word;
    };
    static constexpr Name kNames[] = {{modifier_bits::kCommand, u"\u2318", "Super"},
                                      {modifier_bits::kOption, u"\u2325", "Alt"},
                                      {modifier_bits::kControl, u"\u2303", "Ctrl"},
                                      {modifier_bits::kShift, u"\u21E7", "Shift"}};
    QStringList parts;
    for (const Name& name : kNames) {
        if (modifiers & name.bit) {
#if defined(Q_OS_MACOS)
            parts << QString::fromUtf16(name.symbol);
#else
            parts << QLatin1String(name.word);
#endif
        }
    }
#if defined(Q_OS_MACOS)
    return parts.join(QString());
#else
    return parts.join(QLatin1Char('+'));
#endif
}

// The guide's texts name the default snap combinations in macOS symbols; each platform reads
// its own words.
QString inPlatformWords(QString text) {
    const std::uint32_t single = modifier_bits::kCommand;
    const std::uint32_t multi = modifier_bits::kCommand | modifier_bits::kShift;
    const QString multiSymbols = QStringLiteral("\u2318\u21E7");
    const QString singleSymbol = QStringLiteral("\u2318");
    return text.replace(multiSymbols, modifierWords(multi))
        .replace(singleSymbol, modifierWords(single));
}

} // namespace

QuickStartController::QuickStartController(ViewMaker makeView,
                                           std::function<void()> onOpenZoneEditor,
                                           std::function<void()> onCompleted)
    : makeView_(std::move(makeView))
    , onOpenZoneEditor_(std::move(onOpenZoneEditor))
    , onCompleted_(std::move(onCompleted)) {}

QuickStartChrome QuickStartController::chrome(int index) {
    const auto page = QuickStartGuide::page(index).value();
    return {page.title,
            inPlatformWords(page.body),
            QStringLiteral("%1 of %2").arg(index + 1).arg(QuickStartGuide::pages().size()),
            page.primaryActionTitle,
            QuickStartGuide::previousIndex(index).has_value(),
            QuickStartGuide::isLast(index) ? QStringLiteral("Done") : QStringLiteral("Next")};
}

void QuickStartController::show() {
    if (!view_) {
        QuickStartActions actions;
        actions.next = guard_.wrap([](QuickStartController& self) { self.goNext(); });
        actions.back = guard_.wrap([](QuickStartController& self) { self.goBack(); });
        actions.skip = guard_.wrap([](QuickStartController& self) { self.view_->dismiss(); });
        actions.primaryAction = guard_.wrap([](QuickStartController& self) {
            if (self.onOpenZoneEditor_) {
                self.onOpenZoneEditor_();
            }
        });
        actions.closed = guard_.wrap([](QuickStartController& self) {
            if (self.onCompleted_) {
                self.onCompleted_();
            }
        });
        view_ = makeView_(std::move(actions));
    }
    showPage(0);
    view_->present();
}

void QuickStartController::showPage(int index) {
    index_ = index;
    view_->showPage(chrome(index));
}

void QuickStartController::goNext() {
    if (const auto next = QuickStartGuide::nextIndex(index_)) {
        showPage(*next);
    } else {
        view_->dismiss();
    }
}

void QuickStartController::goBack() {
    if (const auto previous = QuickStartGuide::previousIndex(index_)) {
        showPage(*previous);
    }
}

} // namespace paneforge
