#pragma once

#include "core/layouts/grid_definition.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace paneforge {

// Picking the next or previous layout id with wrap-around.
namespace LayoutCycle {
// No value with fewer than two ids: a single layout never cycles to itself.
std::optional<QString> nextId(const QString& current, const QStringList& layoutIds);
std::optional<QString> previousId(const QString& current, const QStringList& layoutIds);
// Wraps in list order; an unknown current id goes to the first id moving forward and to the last
// moving back.
std::optional<QString> wrappedId(const QString& current, const QStringList& layoutIds, int delta);
} // namespace LayoutCycle

namespace LayoutCycleHUDPolicy {
// How long the heads-up display stays after the last cycle step, in seconds.
inline constexpr double hideDuration = 1.0;
// The name as stored, or "Untitled" when it is blank; nothing to show without a layout.
std::optional<QString> nameToPresent(const std::optional<GridDefinition>& layout);
} // namespace LayoutCycleHUDPolicy

struct LayoutSelectorItem {
    QString id;
    QString name;
    bool isActive = false;

    friend bool operator==(const LayoutSelectorItem&, const LayoutSelectorItem&) = default;
};

namespace LayoutSelectorAssembler {
std::vector<LayoutSelectorItem> items(const std::vector<GridDefinition>& layouts,
                                      const std::optional<QString>& activeId);
// Never empty: a display without layouts shows the fallback layout.
std::vector<LayoutSelectorItem> itemsForDisplay(const std::vector<GridDefinition>& layouts,
                                                const GridDefinition& fallback,
                                                const std::optional<QString>& activeId);
} // namespace LayoutSelectorAssembler

// Keyboard focus in the selector; both moves wrap around.
namespace LayoutSelectorFocus {
int initialIndex(const std::vector<bool>& isActive);
int nextIndex(int index, int count);
int previousIndex(int index, int count);
} // namespace LayoutSelectorFocus

} // namespace paneforge
