#pragma once

#include <QLatin1String>
#include <QString>
#include <QStringView>
#include <array>
#include <cstddef>
#include <optional>

namespace paneforge {

template <typename E> struct EnumName {
    E value;
    const char* name; // ASCII
};

// An enumeration's names, written once and read both ways: the name of a value for encoding and
// diagnostics, the value of a name for decoding. A value missing from the table has no name.
template <typename E, std::size_t N> class NameTable {
public:
    constexpr explicit NameTable(const std::array<EnumName<E>, N>& entries)
        : entries_(entries) {}

    QString nameOf(E value) const {
        for (const auto& entry : entries_) {
            if (entry.value == value) {
                return QString::fromLatin1(entry.name);
            }
        }
        return {};
    }

    std::optional<E> valueOf(QStringView name) const {
        for (const auto& entry : entries_) {
            if (name == QLatin1String(entry.name)) {
                return entry.value;
            }
        }
        return std::nullopt;
    }

private:
    std::array<EnumName<E>, N> entries_;
};

// constexpr auto kNames = nameTable<Color>({{Color::Red, "red"}, {Color::Blue, "blue"}});
template <typename E, std::size_t N>
constexpr NameTable<E, N> nameTable(const EnumName<E> (&entries)[N]) {
    std::array<EnumName<E>, N> copy{};
    for (std::size_t i = 0; i < N; ++i) {
        copy[i] = entries[i];
    }
    return NameTable<E, N>(copy);
}

} // namespace paneforge
