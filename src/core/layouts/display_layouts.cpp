#include "core/layouts/display_layouts.h"

#include "core/config/json_decoding.h"

#include <QJsonArray>
#include <algorithm>

namespace paneforge {

std::optional<GridDefinition> DisplayLayouts::layout(const QString& id) const {
    const auto it = std::find_if(layouts_.begin(), layouts_.end(),
                                 [&](const GridDefinition& grid) { return grid.id() == id; });
    return it == layouts_.end() ? std::nullopt : std::optional(*it);
}

DisplayLayouts DisplayLayouts::withActiveLayoutId(const QString& id) const {
    return DisplayLayouts(id, layouts_);
}

DisplayLayouts DisplayLayouts::replacing(const GridDefinition& grid) const {
    std::vector<GridDefinition> layouts = layouts_;
    bool replaced = false;
    for (auto& layout : layouts) {
        if (layout.id() == grid.id()) {
            layout = grid;
            replaced = true;
        }
    }
    if (!replaced) {
        layouts.push_back(grid);
    }
    return DisplayLayouts(grid.id(), std::move(layouts));
}

DisplayLayouts DisplayLayouts::removing(const QString& id) const {
    std::vector<GridDefinition> layouts = layouts_;
    std::erase_if(layouts, [&](const GridDefinition& grid) { return grid.id() == id; });
    return DisplayLayouts(activeLayoutId_, std::move(layouts));
}

bool operator==(const DisplayLayouts& a, const DisplayLayouts& b) {
    return a.activeLayoutId_ == b.activeLayoutId_ &&
           std::equal(a.layouts_.begin(), a.layouts_.end(), b.layouts_.begin(), b.layouts_.end(),
                      [](const GridDefinition& x, const GridDefinition& y) {
                          return x.hasSameContent(y);
                      });
}

QJsonObject DisplayLayouts::toJson() const {
    QJsonArray layouts;
    for (const auto& layout : layouts_) {
        layouts.append(layout.toJson());
    }
    return QJsonObject{{QStringLiteral("activeLayoutId"), activeLayoutId_},
                       {QStringLiteral("layouts"), layouts}};
}

DisplayLayouts DisplayLayouts::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    QString active = reader.requireString(QStringLiteral("activeLayoutId"));
    const QJsonArray array = reader.requireArray(QStringLiteral("layouts"));
    const QString arrayPath = reader.pathOf(QStringLiteral("layouts"));
    std::vector<GridDefinition> layouts;
    layouts.reserve(static_cast<size_t>(array.size()));
    for (qsizetype i = 0; i < array.size(); ++i) {
        layouts.push_back(GridDefinition::fromJson(array.at(i), json::indexPath(arrayPath, i)));
    }
    return DisplayLayouts(std::move(active), std::move(layouts));
}

} // namespace paneforge
