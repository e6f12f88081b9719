#pragma once

#include <QJsonObject>
#include <QString>
#include <cstdint>
#include <optional>

namespace paneforge {

// A display's identity from its vendor, product and serial numbers. Its stable id keys the
// display's layouts in the configuration, so it survives unplugging and rearranging.
class DisplayIdentifier {
public:
    DisplayIdentifier(std::int64_t vendorId, std::int64_t productId,
                      std::optional<std::int64_t> serialNumber)
        : vendorId_(vendorId)
        , productId_(productId)
        , serialNumber_(serialNumber) {}

    std::int64_t vendorId() const { return vendorId_; }
    std::int64_t productId() const { return productId_; }
    std::optional<std::int64_t> serialNumber() const { return serialNumber_; }

    // "v<vendor>-p<product>-s<serial>", or "...-sno-serial" without a serial number.
    QString stableId() const;

    friend bool operator==(const DisplayIdentifier&, const DisplayIdentifier&) = default;

    QJsonObject toJson() const;
    static DisplayIdentifier fromJson(const QJsonValue& value, const QString& path = {});

private:
    std::int64_t vendorId_;
    std::int64_t productId_;
    std::optional<std::int64_t> serialNumber_;
};

} // namespace paneforge
