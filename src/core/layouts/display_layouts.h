#pragma once

#include "core/layouts/grid_definition.h"

#include <QJsonObject>
#include <QString>
#include <optional>
#include <vector>

namespace paneforge {

// One display's layouts, in the user's order, and the id of its active layout. The active id may
// name no layout of the list; then nothing is active.
class DisplayLayouts {
public:
    DisplayLayouts(QString activeLayoutId, std::vector<GridDefinition> layouts)
        : activeLayoutId_(std::move(activeLayoutId))
        , layouts_(std::move(layouts)) {}

    const QString& activeLayoutId() const { return activeLayoutId_; }
    const std::vector<GridDefinition>& layouts() const { return layouts_; }

    std::optional<GridDefinition> layout(const QString& id) const;
    std::optional<GridDefinition> activeLayout() const { return layout(activeLayoutId_); }
    bool containsLayoutId(const QString& id) const { return layout(id).has_value(); }

    DisplayLayouts withActiveLayoutId(const QString& id) const;
    // Upserts the grid (replacing every layout with its id in place, or appending it) and makes
    // it active.
    DisplayLayouts replacing(const GridDefinition& grid) const;
    // Removes every layout with the id; the active id stays as it is.
    DisplayLayouts removing(const QString& id) const;

    // Compares layouts by their whole content, not only by id, so that a changed name or split
    // makes entries differ.
    friend bool operator==(const DisplayLayouts& a, const DisplayLayouts& b);

    QJsonObject toJson() const;
    static DisplayLayouts fromJson(const QJsonValue& value, const QString& path = {});

private:
    QString activeLayoutId_;
    std::vector<GridDefinition> layouts_;
};

} // namespace paneforge
