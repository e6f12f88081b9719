#include "core/geometry/normalized_geometry.h"

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

std::optional<GridLineOrientation> gridLineOrientationFromRawValue(const QString& rawValue) {
    if (rawValue == QLatin1String("horizontal")) {
        return GridLineOrientation::Horizontal;
    }
    if (rawValue == QLatin1String("vertical")) {
        return GridLineOrientation::Vertical;
    }
    return std::nullopt;
}

QString rawValue(GridLineOrientation orientation) {
    return orientation == GridLineOrientation::Horizontal ? QStringLiteral("horizontal")
                                                          : QStringLiteral("vertical");
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
