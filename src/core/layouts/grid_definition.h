#pragma once

#include "core/geometry/normalized_geometry.h"

#include <QJsonObject>
#include <QString>
#include <optional>
#include <vector>

namespace paneforge {

// The JSON key names of a layout, in their written order.
enum class GridDefinitionCodingKeys { Id, Name, HorizontalSplits, VerticalSplits };
QString rawValue(GridDefinitionCodingKeys key);
std::optional<GridDefinitionCodingKeys> gridDefinitionCodingKeyFromRawValue(const QString& raw);

// A layout: split lines as fractions of the visible frame. The split lists are kept exactly as
// given (unsorted, unclamped, duplicates allowed); consumers clean them with GridSplitNormalizer.
// Identity is the id alone: a layout stays the same layout while its name or splits change.
class GridDefinition {
public:
    // Vertical splits come before horizontal ones here, while the stored and written order is
    // horizontal first; both orders are kept on purpose.
    GridDefinition(QString id, QString name, std::vector<double> verticalSplits,
                   std::vector<double> horizontalSplits);

    const QString& id() const { return id_; }
    const QString& name() const { return name_; }
    // The name to show: as stored, or "Untitled" when it is blank.
    QString displayName() const;
    const std::vector<double>& horizontalSplits() const { return horizontalSplits_; }
    const std::vector<double>& verticalSplits() const { return verticalSplits_; }

    GridDefinition withId(const QString& id) const;
    GridDefinition withName(const QString& name) const;
    GridDefinition withSplits(const std::vector<double>& vertical,
                              const std::vector<double>& horizontal) const;

    // Equal ids; the name and the splits do not take part.
    friend bool operator==(const GridDefinition& a, const GridDefinition& b) {
        return a.id_ == b.id_;
    }

    // Same id, name and split lists: for tests and change detection, not for identity.
    bool hasSameContent(const GridDefinition& other) const;

    QJsonObject toJson() const;
    static GridDefinition fromJson(const QJsonValue& value, const QString& path = {});

private:
    QString id_;
    QString name_;
    std::vector<double> horizontalSplits_;
    std::vector<double> verticalSplits_;
};

struct GridCell {
    int rowIndex = 0;
    int columnIndex = 0;
    NormalizedRect rect;

    friend bool operator==(const GridCell&, const GridCell&) = default;

    // "r" + row + "-c" + column: names the cell in frame maps and selections.
    QString key() const;

    QJsonObject toJson() const;
    static GridCell fromJson(const QJsonValue& value, const QString& path = {});
};

QString cellKey(int rowIndex, int columnIndex);

} // namespace paneforge
