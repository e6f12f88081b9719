#pragma once

#include <QJsonObject>
#include <QString>
#include <cstdint>

namespace paneforge {

// Modifier mask bits, the values the platform's hot-key registration takes. Command is the Super
// key on Linux, Option is Alt.
namespace modifier_bits {
inline constexpr std::uint32_t kCommand = 256;
inline constexpr std::uint32_t kShift = 512;
inline constexpr std::uint32_t kOption = 2048;
inline constexpr std::uint32_t kControl = 4096;
} // namespace modifier_bits

// A global hot key: a macOS virtual key code (on every platform) and a modifier mask. Unknown mask
// bits are carried unchanged.
struct HotkeyDefinition {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;

    friend bool operator==(const HotkeyDefinition&, const HotkeyDefinition&) = default;

    QJsonObject toJson() const;
    static HotkeyDefinition fromJson(const QJsonValue& value, const QString& path = {});
};

} // namespace paneforge
