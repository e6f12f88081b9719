#pragma once

#include <QJsonObject>
#include <QString>
#include <cstdint>

namespace paneforge {

// A modifier combination alone: what arms drag snapping.
struct ModifierDefinition {
    std::uint32_t modifiers = 0;

    friend bool operator==(const ModifierDefinition&, const ModifierDefinition&) = default;

    QJsonObject toJson() const;
    static ModifierDefinition fromJson(const QJsonValue& value, const QString& path = {});
};

} // namespace paneforge
