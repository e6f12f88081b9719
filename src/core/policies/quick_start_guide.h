#pragma once

#include "core/policies/platform_words.h"

#include <QString>
#include <optional>
#include <vector>

namespace paneforge {

enum class QuickStartPageId { Welcome, CreateLayout, Snap };
QString rawValue(QuickStartPageId id); // "welcome", "createLayout", "snap"

struct QuickStartPage {
    QuickStartPageId id;
    QString title;
    QString body;
    std::optional<QString> primaryActionTitle;

    friend bool operator==(const QuickStartPage&, const QuickStartPage&) = default;
};

namespace QuickStartGuide {
// In the words of the platform this build is for.
const std::vector<QuickStartPage>& pages();
// The pages as they read on a platform ("Hold ⌘" on macOS, "Hold Super" on Linux).
std::vector<QuickStartPage> pagesIn(const PlatformWords& words);
std::optional<QuickStartPage> page(int index);
std::optional<int> nextIndex(int index);
std::optional<int> previousIndex(int index);
bool isLast(int index);
} // namespace QuickStartGuide

namespace QuickStartPolicy {
// Only a configuration that says "not completed" shows the guide by itself; one from before the
// guide existed (no value) does not.
bool shouldAutoPresent(std::optional<bool> hasCompletedQuickStart);
} // namespace QuickStartPolicy

} // namespace paneforge
