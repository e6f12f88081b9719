#include "core/layouts/display_identifier.h"

#include "core/config/json_decoding.h"

namespace paneforge {

QString DisplayIdentifier::stableId() const {
    return QLatin1Char('v') + QString::number(vendorId_) + QLatin1String("-p") +
           QString::number(productId_) + QLatin1String("-s") +
           (serialNumber_ ? QString::number(*serialNumber_) : QStringLiteral("no-serial"));
}

QJsonObject DisplayIdentifier::toJson() const {
    QJsonObject object{{QStringLiteral("vendorId"), static_cast<qint64>(vendorId_)},
                       {QStringLiteral("productId"), static_cast<qint64>(productId_)}};
    if (serialNumber_) {
        object.insert(QStringLiteral("serialNumber"), static_cast<qint64>(*serialNumber_));
    }
    return object;
}

DisplayIdentifier DisplayIdentifier::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    const auto vendor = reader.requireInt(QStringLiteral("vendorId"));
    const auto product = reader.requireInt(QStringLiteral("productId"));
    std::optional<std::int64_t> serial;
    if (const auto raw = reader.optionalValue(QStringLiteral("serialNumber"))) {
        serial = json::toInt(*raw, reader.pathOf(QStringLiteral("serialNumber")));
    }
    return DisplayIdentifier(vendor, product, serial);
}

} // namespace paneforge
