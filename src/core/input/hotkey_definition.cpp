#include "core/input/hotkey_definition.h"

#include "core/config/json_decoding.h"
#include "core/input/modifier_definition.h"

namespace paneforge {

QJsonObject HotkeyDefinition::toJson() const {
    return QJsonObject{{QStringLiteral("keyCode"), static_cast<qint64>(keyCode)},
                       {QStringLiteral("modifiers"), static_cast<qint64>(modifiers)}};
}

HotkeyDefinition HotkeyDefinition::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    return {reader.requireUInt32(QStringLiteral("keyCode")),
            reader.requireUInt32(QStringLiteral("modifiers"))};
}

QJsonObject ModifierDefinition::toJson() const {
    return QJsonObject{{QStringLiteral("modifiers"), static_cast<qint64>(modifiers)}};
}

ModifierDefinition ModifierDefinition::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    return {reader.requireUInt32(QStringLiteral("modifiers"))};
}

} // namespace paneforge
