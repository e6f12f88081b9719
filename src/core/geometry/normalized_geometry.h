#pragma once

#include "core/config/json_decoding.h"

#include <QJsonObject>
#include <QString>
#include <optional>

namespace paneforge {

// Fractions of a display's visible frame: 0 at the left or top edge, 1 at the right or bottom
// edge (top-left origin, y grows downward). Stored exactly as given: no clamping, no validation.

struct NormalizedPoint {
    double x = 0.0;
    double y = 0.0;

    // Exact comparison, no tolerance; a NaN component makes points unequal.
    friend bool operator==(const NormalizedPoint&, const NormalizedPoint&) = default;

    QJsonObject toJson() const;
    static NormalizedPoint fromJson(const QJsonValue& value, const QString& path = {});
};

struct NormalizedRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }

    friend bool operator==(const NormalizedRect&, const NormalizedRect&) = default;

    QJsonObject toJson() const;
    static NormalizedRect fromJson(const QJsonValue& value, const QString& path = {});
};

enum class GridLineOrientation { Horizontal, Vertical };

// "horizontal" or "vertical"; any other string (case matters) gives no value.
std::optional<GridLineOrientation> gridLineOrientationFromRawValue(const QString& rawValue);
QString rawValue(GridLineOrientation orientation);
GridLineOrientation gridLineOrientationFromJson(const QJsonValue& value, const QString& path = {});

} // namespace paneforge
