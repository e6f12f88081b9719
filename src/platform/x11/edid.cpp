#include "platform/x11/edid.h"

namespace paneforge {

std::optional<EdidInfo> parseEdid(const QByteArray& bytes) {
    static const QByteArray header("\x00\xff\xff\xff\xff\xff\xff\x00", 8);
    if (bytes.size() < 128 || !bytes.startsWith(header)) {
        return std::nullopt;
    }
    const auto byte = [&](int i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i]));
    };
    EdidInfo info;
    info.manufacturerId = (byte(8) << 8) | byte(9); // big-endian
    info.productCode = byte(10) | (byte(11) << 8);  // little-endian
    const std::uint32_t serial = byte(12) | (byte(13) << 8) | (byte(14) << 16) | (byte(15) << 24);
    if (serial != 0) {
        info.serialNumber = serial;
    }
    // Four 18-byte descriptors; tag 0xFC holds the monitor name, ended by a line feed.
    for (int offset = 54; offset <= 108; offset += 18) {
        if (byte(offset) == 0 && byte(offset + 1) == 0 && byte(offset + 3) == 0xFC) {
            QByteArray name = bytes.mid(offset + 5, 13);
            const auto end = name.indexOf('\n');
            if (end >= 0) {
                name.truncate(end);
            }
            info.productName = QString::fromLatin1(name).trimmed();
        }
    }
    return info;
}

} // namespace paneforge
