#include "core/layouts/layout_cycle.h"

namespace paneforge {

std::optional<QString> LayoutCycle::wrappedId(const QString& current, const QStringList& layoutIds,
                                              int delta) {
    const auto n = layoutIds.size();
    if (n == 0) {
        return std::nullopt;
    }
    const auto index = layoutIds.indexOf(current);
    if (index < 0) {
        return delta >= 1 ? layoutIds.front() : layoutIds.back();
    }
    // Reduce the step first so that any delta wraps correctly.
    const auto step = static_cast<qsizetype>(delta) % n;
    return layoutIds.at(((index + step) % n + n) % n);
}

std::optional<QString> LayoutCycle::nextId(const QString& current, const QStringList& layoutIds) {
    return layoutIds.size() < 2 ? std::nullopt : wrappedId(current, layoutIds, 1);
}

std::optional<QString> LayoutCycle::previousId(const QString& current,
                                               const QStringList& layoutIds) {
    return layoutIds.size() < 2 ? std::nullopt : wrappedId(current, layoutIds, -1);
}

std::optional<QString>
LayoutCycleHUDPolicy::nameToPresent(const std::optional<GridDefinition>& layout) {
    if (!layout) {
        return std::nullopt;
    }
    return layout->displayName();
}

std::vector<LayoutSelectorItem>
LayoutSelectorAssembler::items(const std::vector<GridDefinition>& layouts,
                               const std::optional<QString>& activeId) {
    std::vector<LayoutSelectorItem> result;
    result.reserve(layouts.size());
    for (const auto& layout : layouts) {
        result.push_back({layout.id(), layout.name(), activeId && *activeId == layout.id()});
    }
    return result;
}

std::vector<LayoutSelectorItem>
LayoutSelectorAssembler::itemsForDisplay(const std::vector<GridDefinition>& layouts,
                                         const GridDefinition& fallback,
                                         const std::optional<QString>& activeId) {
    return layouts.empty() ? items({fallback}, activeId) : items(layouts, activeId);
}

int LayoutSelectorFocus::initialIndex(const std::vector<bool>& isActive) {
    for (size_t i = 0; i < isActive.size(); ++i) {
        if (isActive[i]) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

int LayoutSelectorFocus::nextIndex(int index, int count) {
    return count < 2 ? 0 : ((index + 1) % count + count) % count;
}

int LayoutSelectorFocus::previousIndex(int index, int count) {
    return count < 2 ? 0 : ((index - 1) % count + count) % count;
}

} // namespace paneforge
