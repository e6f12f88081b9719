#include "core/layouts/grid_definition.h"

#include "core/config/name_table.h"

#include <QJsonArray>
#include <limits>

namespace paneforge {

namespace {

QJsonArray toJsonArray(const std::vector<double>& values) {
    QJsonArray array;
    for (double value : values) {
        array.append(value);
    }
    return array;
}

int toIndex(std::int64_t value, const QString& path) {
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
        throw JsonDecodingError(JsonDecodingError::Kind::DataCorrupted, path,
                                QStringLiteral("%1 is out of range").arg(value));
    }
    return static_cast<int>(value);
}

} // namespace

namespace {
using GridKeys = GridDefinitionCodingKeys;
constexpr auto kKeyNames = nameTable<GridKeys>({{GridKeys::Id, "id"},
                                                {GridKeys::Name, "name"},
                                                {GridKeys::HorizontalSplits, "horizontalSplits"},
                                                {GridKeys::VerticalSplits, "verticalSplits"}});
} // namespace

QString rawValue(GridDefinitionCodingKeys key) {
    return kKeyNames.nameOf(key);
}

std::optional<GridDefinitionCodingKeys> gridDefinitionCodingKeyFromRawValue(const QString& raw) {
    return kKeyNames.valueOf(raw);
}

GridDefinition::GridDefinition(QString id, QString name, std::vector<double> verticalSplits,
                               std::vector<double> horizontalSplits)
    : id_(std::move(id))
    , name_(std::move(name))
    , horizontalSplits_(std::move(horizontalSplits))
    , verticalSplits_(std::move(verticalSplits)) {}

GridDefinition GridDefinition::withId(const QString& id) const {
    return GridDefinition(id, name_, verticalSplits_, horizontalSplits_);
}

GridDefinition GridDefinition::withName(const QString& name) const {
    return GridDefinition(id_, name, verticalSplits_, horizontalSplits_);
}

GridDefinition GridDefinition::withSplits(const std::vector<double>& vertical,
                                          const std::vector<double>& horizontal) const {
    return GridDefinition(id_, name_, vertical, horizontal);
}

QString GridDefinition::displayName() const {
    return name_.trimmed().isEmpty() ? QStringLiteral("Untitled") : name_;
}

bool GridDefinition::hasSameContent(const GridDefinition& other) const {
    return id_ == other.id_ && name_ == other.name_ &&
           horizontalSplits_ == other.horizontalSplits_ && verticalSplits_ == other.verticalSplits_;
}

QJsonObject GridDefinition::toJson() const {
    return QJsonObject{
        {rawValue(GridDefinitionCodingKeys::Id), id_},
        {rawValue(GridDefinitionCodingKeys::Name), name_},
        {rawValue(GridDefinitionCodingKeys::HorizontalSplits), toJsonArray(horizontalSplits_)},
        {rawValue(GridDefinitionCodingKeys::VerticalSplits), toJsonArray(verticalSplits_)},
    };
}

GridDefinition GridDefinition::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    QString id = reader.requireString(rawValue(GridDefinitionCodingKeys::Id));
    QString name = reader.requireString(rawValue(GridDefinitionCodingKeys::Name));
    auto horizontal =
        reader.requireDoubleArray(rawValue(GridDefinitionCodingKeys::HorizontalSplits));
    auto vertical = reader.requireDoubleArray(rawValue(GridDefinitionCodingKeys::VerticalSplits));
    return GridDefinition(std::move(id), std::move(name), std::move(vertical),
                          std::move(horizontal));
}

QString cellKey(int rowIndex, int columnIndex) {
    return QLatin1Char('r') + QString::number(rowIndex) + QLatin1String("-c") +
           QString::number(columnIndex);
}

QString GridCell::key() const {
    return cellKey(rowIndex, columnIndex);
}

QJsonObject GridCell::toJson() const {
    return QJsonObject{{QStringLiteral("rowIndex"), rowIndex},
                       {QStringLiteral("columnIndex"), columnIndex},
                       {QStringLiteral("rect"), rect.toJson()}};
}

GridCell GridCell::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    return GridCell{toIndex(reader.requireInt(QStringLiteral("rowIndex")),
                            reader.pathOf(QStringLiteral("rowIndex"))),
                    toIndex(reader.requireInt(QStringLiteral("columnIndex")),
                            reader.pathOf(QStringLiteral("columnIndex"))),
                    NormalizedRect::fromJson(reader.requireValue(QStringLiteral("rect")),
                                             reader.pathOf(QStringLiteral("rect")))};
}

} // namespace paneforge
