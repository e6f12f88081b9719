#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

namespace paneforge {

// The identity fields of a display's EDID block.
struct EdidInfo {
    std::int64_t manufacturerId = 0; // the packed three-letter code, as the block stores it
    std::int64_t productCode = 0;
    std::optional<std::int64_t> serialNumber; // none when the block says 0
    QString productName;                      // from the monitor name descriptor, may be empty
};

// None when the bytes are not an EDID block (too short or a wrong header).
std::optional<EdidInfo> parseEdid(const QByteArray& bytes);

} // namespace paneforge
