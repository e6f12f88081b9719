#include "core/layouts/display_layout_service.h"

#include "core/config/name_table.h"
#include "core/layouts/layout_cycle.h"

#include <QUuid>

namespace paneforge {

namespace {

constexpr auto kErrorNames = nameTable<DisplayLayoutError>({
    {DisplayLayoutError::DuplicateName, "duplicateName"},
    {DisplayLayoutError::LayoutNotOwned, "layoutNotOwned"},
    {DisplayLayoutError::EmptyName, "emptyName"},
    {DisplayLayoutError::LastLayout, "lastLayout"},
});

QString errorName(DisplayLayoutError error) {
    return kErrorNames.nameOf(error);
}

std::optional<DisplayLayouts> entryOf(const PaneforgeConfig& config, const QString& stableId) {
    const auto it = config.displays().find(stableId);
    return it == config.displays().end() ? std::nullopt : std::optional(it->second);
}

DisplayLayouts ownedEntry(const PaneforgeConfig& config, const QString& stableId,
                          const QString& gridId) {
    const auto entry = entryOf(config, stableId);
    if (!entry || !entry->containsLayoutId(gridId)) {
        throw DisplayLayoutException(DisplayLayoutError::LayoutNotOwned);
    }
    return *entry;
}

// Trimmed of white space and line breaks (Unicode), or EmptyName when nothing is left.
GridDefinition named(const GridDefinition& grid) {
    const QString trimmed = grid.name().trimmed();
    if (trimmed.isEmpty()) {
        throw DisplayLayoutException(DisplayLayoutError::EmptyName);
    }
    return grid.withName(trimmed);
}

void rejectDuplicateName(const std::vector<GridDefinition>& layouts, const QString& name,
                         const std::optional<QString>& exemptId) {
    for (const auto& layout : layouts) {
        if (exemptId && layout.id() == *exemptId) {
            continue;
        }
        if (QString::compare(layout.name(), name, Qt::CaseInsensitive) == 0) {
            throw DisplayLayoutException(DisplayLayoutError::DuplicateName);
        }
    }
}

} // namespace

DisplayLayoutException::DisplayLayoutException(DisplayLayoutError error)
    : std::runtime_error(errorName(error).toStdString())
    , error_(error) {}

DisplayLayoutService::DisplayLayoutService(LayoutIdMaker makeLayoutId)
    : makeLayoutId_(std::move(makeLayoutId)) {}

DisplayLayoutService::LayoutIdMaker DisplayLayoutService::defaultLayoutIdMaker() {
    return [] { return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(); };
}

std::vector<GridDefinition> DisplayLayoutService::listLayouts(const PaneforgeConfig& config,
                                                              const QString& stableId) const {
    const auto entry = entryOf(config, stableId);
    return entry ? entry->layouts() : std::vector<GridDefinition>{};
}

std::optional<GridDefinition> DisplayLayoutService::getActiveLayout(const PaneforgeConfig& config,
                                                                    const QString& stableId) const {
    const auto entry = entryOf(config, stableId);
    return entry ? entry->activeLayout() : std::nullopt;
}

GridDefinition DisplayLayoutService::getActiveLayoutOrDefault(const PaneforgeConfig& config,
                                                              const QString& stableId) const {
    // Looked up in place: this runs on every pointer movement of a snap.
    const auto it = config.displays().find(stableId);
    if (it != config.displays().end()) {
        if (auto layout = it->second.activeLayout()) {
            return std::move(*layout);
        }
    }
    return config.defaultLayout();
}

GridDefinition DisplayLayoutService::getOrCreateLayout(const PaneforgeConfig& config,
                                                       const QString& stableId) const {
    if (const auto active = getActiveLayout(config, stableId)) {
        return *active;
    }
    const auto layouts = listLayouts(config, stableId);
    if (!layouts.empty()) {
        return layouts.front();
    }
    const GridDefinition& fallback = config.defaultLayout();
    return GridDefinition(QStringLiteral("display-") + stableId, fallback.name(),
                          fallback.verticalSplits(), fallback.horizontalSplits());
}

PaneforgeConfig DisplayLayoutService::setActiveLayout(const PaneforgeConfig& config,
                                                      const QString& stableId,
                                                      const QString& gridId) const {
    const DisplayLayouts entry = ownedEntry(config, stableId, gridId);
    return replaceDisplay(config, stableId, entry.withActiveLayoutId(gridId));
}

PaneforgeConfig DisplayLayoutService::save(const PaneforgeConfig& config, const QString& stableId,
                                           const GridDefinition& grid) const {
    const GridDefinition namedGrid = named(grid);
    const auto entry = entryOf(config, stableId).value_or(DisplayLayouts(QString(), {}));
    rejectDuplicateName(entry.layouts(), namedGrid.name(), namedGrid.id());
    return replaceDisplay(config, stableId, entry.replacing(namedGrid));
}

PaneforgeConfig DisplayLayoutService::saveAsNew(const PaneforgeConfig& config,
                                                const QString& stableId,
                                                const GridDefinition& grid) const {
    const GridDefinition namedGrid = named(grid);
    const GridDefinition copy = namedGrid.withId(makeLayoutId_());
    const auto entry = entryOf(config, stableId).value_or(DisplayLayouts(QString(), {}));
    rejectDuplicateName(entry.layouts(), copy.name(), std::nullopt);
    return replaceDisplay(config, stableId, entry.replacing(copy));
}

PaneforgeConfig DisplayLayoutService::deleteLayout(const PaneforgeConfig& config,
                                                   const QString& stableId,
                                                   const QString& gridId) const {
    const DisplayLayouts entry = ownedEntry(config, stableId, gridId);
    const auto& layouts = entry.layouts();
    if (layouts.size() < 2) {
        throw DisplayLayoutException(DisplayLayoutError::LastLayout);
    }
    QString activeId = entry.activeLayoutId();
    if (activeId == gridId) {
        // The neighbour in the list as it was: the next layout, or the previous one when the
        // deleted layout was last.
        const auto it = std::find_if(layouts.begin(), layouts.end(),
                                     [&](const GridDefinition& g) { return g.id() == gridId; });
        const auto index = static_cast<size_t>(it - layouts.begin());
        activeId = index + 1 < layouts.size() ? layouts[index + 1].id() : layouts[index - 1].id();
    }
    return replaceDisplay(config, stableId, entry.removing(gridId).withActiveLayoutId(activeId));
}

std::pair<PaneforgeConfig, GridDefinition>
DisplayLayoutService::selectLayout(const PaneforgeConfig& config, const QString& stableId,
                                   const QString& gridId) const {
    const PaneforgeConfig updated = setActiveLayout(config, stableId, gridId);
    const auto entry = entryOf(updated, stableId);
    if (const auto layout = entry ? entry->layout(gridId) : std::nullopt) {
        return {updated, *layout};
    }
    return {updated, getOrCreateLayout(updated, stableId)};
}

std::optional<PaneforgeConfig> DisplayLayoutService::cycle(const PaneforgeConfig& config,
                                                           const QString& stableId,
                                                           int delta) const {
    const auto entry = entryOf(config, stableId);
    QStringList ids;
    if (entry) {
        for (const auto& layout : entry->layouts()) {
            ids.append(layout.id());
        }
    }
    if (ids.size() < 2) {
        return std::nullopt;
    }
    const auto next = LayoutCycle::wrappedId(entry->activeLayoutId(), ids, delta);
    return setActiveLayout(config, stableId, *next);
}

std::optional<PaneforgeConfig> DisplayLayoutService::cycleNext(const PaneforgeConfig& config,
                                                               const QString& stableId) const {
    return cycle(config, stableId, 1);
}

std::optional<PaneforgeConfig> DisplayLayoutService::cyclePrevious(const PaneforgeConfig& config,
                                                                   const QString& stableId) const {
    return cycle(config, stableId, -1);
}

bool DisplayLayoutService::isUsableName(const QString& name) {
    return !name.trimmed().isEmpty();
}

PaneforgeConfig DisplayLayoutService::replaceDisplay(const PaneforgeConfig& config,
                                                     const QString& stableId,
                                                     const DisplayLayouts& entry) {
    DisplayLayoutsMap displays = config.displays();
    displays.insert_or_assign(stableId, entry);
    return config.copying(std::move(displays));
}

} // namespace paneforge
