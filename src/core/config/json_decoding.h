#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

namespace paneforge {

// A value read from JSON did not have the expected shape. The message names the failing key by
// its path from the document's root (for example `displays["A"].layouts[2].verticalSplits`), so
// that a person editing the file by hand can find it.
class JsonDecodingError : public std::runtime_error {
public:
    enum class Kind { KeyNotFound, TypeMismatch, ValueNotFound, DataCorrupted };

    JsonDecodingError(Kind kind, const QString& path, const QString& detail);

    Kind kind() const { return kind_; }
    QString path() const { return path_; }
    QString message() const { return message_; }

private:
    Kind kind_;
    QString path_;
    QString message_;
};

// Reads one JSON object strictly: every require... throws JsonDecodingError for a missing key, a
// JSON null or a value of the wrong type; optional... reads a missing key and a null alike as
// absent. Unknown keys are ignored. Numbers are taken as they are: no clamping, no rounding.
class JsonObjectReader {
public:
    // `path` is the path of `value` itself; empty for the document's root.
    JsonObjectReader(const QJsonValue& value, const QString& path);

    const QJsonObject& object() const { return object_; }
    const QString& path() const { return path_; }
    QString pathOf(const QString& key) const;

    bool contains(const QString& key) const;

    double requireDouble(const QString& key) const;
    QString requireString(const QString& key) const;
    bool requireBool(const QString& key) const;
    std::int64_t requireInt(const QString& key) const;
    std::uint32_t requireUInt32(const QString& key) const;
    QJsonArray requireArray(const QString& key) const;
    QJsonObject requireObject(const QString& key) const;
    JsonObjectReader requireReader(const QString& key) const;
    std::vector<double> requireDoubleArray(const QString& key) const;

    std::optional<double> optionalDouble(const QString& key) const;
    std::optional<QString> optionalString(const QString& key) const;
    std::optional<bool> optionalBool(const QString& key) const;
    std::optional<std::uint32_t> optionalUInt32(const QString& key) const;
    std::optional<JsonObjectReader> optionalReader(const QString& key) const;

    // The value under `key`, which must be present and not null.
    QJsonValue requireValue(const QString& key) const;
    // The value under `key`, or none when it is missing or null.
    std::optional<QJsonValue> optionalValue(const QString& key) const;

private:
    QJsonObject object_;
    QString path_;
};

// Helpers for values that are not objects, with the path used in error messages.
namespace json {
QString describeType(const QJsonValue& value);
QString indexPath(const QString& path, qsizetype index);
QString keyPath(const QString& path, const QString& key);
double toDouble(const QJsonValue& value, const QString& path);
QString toString(const QJsonValue& value, const QString& path);
bool toBool(const QJsonValue& value, const QString& path);
std::int64_t toInt(const QJsonValue& value, const QString& path);
std::uint32_t toUInt32(const QJsonValue& value, const QString& path);
QJsonArray toArray(const QJsonValue& value, const QString& path);
QJsonObject toObject(const QJsonValue& value, const QString& path);

// A number for a message, as the file wrote it as far as the parsed value tells: whole numbers in
// full ("4294967296", not "4.29497e+09"), others in their shortest exact form ("1.0000001").
QString numberText(const QJsonValue& value);

// Paneforge's documents nest a handful of levels and hold a few thousand arrays and objects (50
// displays with 40 layouts each: about 6,000). Far beyond that a document is hostile: every array
// and object costs the parser a few hundred bytes, so 16 MB of small ones would take gigabytes.
struct StructureLimits {
    int maxDepth = 32;
    qsizetype maxContainers = 1 << 18;
};
struct StructureExcess {
    enum class Kind { Depth, Containers };
    Kind kind;
    qsizetype offset; // of the array or object that went over the limit
    QString describe(const StructureLimits& limits) const;
};
// The first array or object that opens deeper than the limit or beyond the count, or none. One
// pass over the bytes without allocating, so that a hostile document is refused before the parser
// builds a tree for it; brackets inside strings do not count.
std::optional<StructureExcess> excessiveStructure(const QByteArray& data,
                                                  const StructureLimits& limits = {});
} // namespace json

} // namespace paneforge
