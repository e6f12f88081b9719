#include "core/policies/quick_start_guide.h"

#include "core/config/name_table.h"
#include "core/input/hotkey_definition.h"
#include "core/policies/platform_words.h"

namespace paneforge {

namespace {
constexpr auto kPageNames =
    nameTable<QuickStartPageId>({{QuickStartPageId::Welcome, "welcome"},
                                 {QuickStartPageId::CreateLayout, "createLayout"},
                                 {QuickStartPageId::Snap, "snap"}});
} // namespace

QString rawValue(QuickStartPageId id) {
    return kPageNames.nameOf(id);
}

std::vector<QuickStartPage> QuickStartGuide::pagesIn(const PlatformWords& words) {
    // The default combinations.
    const QString single = words.heldCombination(modifier_bits::kCommand);
    const QString multi = words.heldCombination(modifier_bits::kCommand | modifier_bits::kShift);
    return {
        {QuickStartPageId::Welcome, QStringLiteral("Welcome to Paneforge"),
         QStringLiteral("Paneforge snaps windows into zones you design. Permissions are ready. "
                        "Next, create a layout, then snap."),
         std::nullopt},
        {QuickStartPageId::CreateLayout, QStringLiteral("Create a layout"),
         QStringLiteral("Open Zone Editor from this window or the menu. Draw splits, name the "
                        "layout, then Save."),
         QStringLiteral("Open Zone Editor")},
        {QuickStartPageId::Snap, QStringLiteral("Snap a window"),
         QStringLiteral("Hold %1 and drag a window onto a zone. Hold %2 to snap across "
                        "several zones. Change modifiers in Preferences.")
             .arg(single, multi),
         std::nullopt},
    };
}

const std::vector<QuickStartPage>& QuickStartGuide::pages() {
    static const std::vector<QuickStartPage> kPages = pagesIn(PlatformWords::current());
    return kPages;
}

std::optional<QuickStartPage> QuickStartGuide::page(int index) {
    if (index < 0 || index >= static_cast<int>(pages().size())) {
        return std::nullopt;
    }
    return pages()[static_cast<size_t>(index)];
}

std::optional<int> QuickStartGuide::nextIndex(int index) {
    return page(index + 1) ? std::optional(index + 1) : std::nullopt;
}

std::optional<int> QuickStartGuide::previousIndex(int index) {
    return page(index - 1) ? std::optional(index - 1) : std::nullopt;
}

bool QuickStartGuide::isLast(int index) {
    return page(index) && !page(index + 1);
}

bool QuickStartPolicy::shouldAutoPresent(std::optional<bool> hasCompletedQuickStart) {
    return hasCompletedQuickStart.has_value() && !*hasCompletedQuickStart;
}

} // namespace paneforge
