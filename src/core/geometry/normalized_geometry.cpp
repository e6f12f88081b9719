#include "core/geometry/normalized_geometry.h"

#include "core/config/name_table.h"

namespace paneforge {

QJsonObject NormalizedPoint::toJson() const {
    return QJsonObject{{QStringLiteral("x"), x}, {QStringLiteral("y"), y}};
}

NormalizedPoint NormalizedPoint::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    return {reader.requireDouble(QStringLiteral("x")), reader.requireDouble(QStringLiteral("y"))};
}

QJsonObject NormalizedRect::toJson() const {
    return QJsonObject{{QStringLiteral("x"), x},
                       {QStringLiteral("y"), y},
                       {QStringLiteral("width"), width},
                       {QStringLiteral("height"), height}};
}

NormalizedRect NormalizedRect::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    return {reader.requireDouble(QStringLiteral("x")), reader.requireDouble(QStringLiteral("y")),
            reader.requireDouble(QStringLiteral("width")),
            reader.requireDouble(QStringLiteral("height"))};
}

namespace {
constexpr auto kOrientationNames = nameTable<GridLineOrientation>(
    {{GridLineOrientation::Horizontal, "horizontal"}, {GridLineOrientation::Vertical, "vertical"}});
} // namespace

std::optional<GridLineOrientation> gridLineOrientationFromRawValue(const QString& rawValue) {
    return kOrientationNames.valueOf(rawValue);
}

QString rawValue(GridLineOrientation orientation) {
    return kOrientationNames.nameOf(orientation);
}

GridLineOrientation gridLineOrientationFromJson(const QJsonValue& value, const QString& path) {
    const QString text = json::toString(value, path);
    const auto orientation = gridLineOrientationFromRawValue(text);
    if (!orientation) {
        throw JsonDecodingError(
            JsonDecodingError::Kind::DataCorrupted, path,
            QStringLiteral("\"%1\" is not \"horizontal\" or \"vertical\"").arg(text));
    }
    return *orientation;
}

} // namespace paneforge
