#include "core/config/json_decoding.h"

#include "core/config/name_table.h"

#include <QCborValue>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace paneforge {

namespace {

using Kind = JsonDecodingError::Kind;
constexpr auto kKindTexts = nameTable<Kind>({{Kind::KeyNotFound, "missing key"},
                                             {Kind::TypeMismatch, "wrong type"},
                                             {Kind::ValueNotFound, "missing value"},
                                             {Kind::DataCorrupted, "invalid value"}});

QString kindText(JsonDecodingError::Kind kind) {
    return kKindTexts.nameOf(kind);
}

QString displayPath(const QString& path) {
    return path.isEmpty() ? QStringLiteral("the top level") : path;
}

[[noreturn]] void throwTypeMismatch(const QJsonValue& value, const QString& path,
                                    const char* expected) {
    if (value.isNull()) {
        throw JsonDecodingError(
            JsonDecodingError::Kind::ValueNotFound, path,
            QStringLiteral("expected %1 but found null").arg(QLatin1String(expected)));
    }
    throw JsonDecodingError(JsonDecodingError::Kind::TypeMismatch, path,
                            QStringLiteral("expected %1 but found %2")
                                .arg(QLatin1String(expected), json::describeType(value)));
}

// Whether the parser kept the number as a 64-bit integer (a whole number that fits); such a value
// is exact, where its double would round beyond 2^53.
bool isInteger(const QJsonValue& value) {
    return value.isDouble() && QCborValue::fromJsonValue(value).isInteger();
}

bool isWhole(double number) {
    return std::isfinite(number) && std::trunc(number) == number;
}

bool isIdentifier(const QString& key) {
    if (key.isEmpty() || key.front().isDigit()) {
        return false;
    }
    for (const QChar c : key) {
        if (!(c.isLetterOrNumber() || c == QLatin1Char('_'))) {
            return false;
        }
    }
    return true;
}

} // namespace

JsonDecodingError::JsonDecodingError(Kind kind, const QString& path, const QString& detail)
    : std::runtime_error(QStringLiteral("%1 at %2: %3")
                             .arg(kindText(kind), displayPath(path), detail)
                             .toStdString())
    , kind_(kind)
    , path_(path)
    , message_(QString::fromStdString(what())) {}

namespace json {

QString describeType(const QJsonValue& value) {
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a boolean");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a string");
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        return QStringLiteral("nothing");
    }
    return QStringLiteral("an unknown value");
}

QString indexPath(const QString& path, qsizetype index) {
    return path + QLatin1Char('[') + QString::number(index) + QLatin1Char(']');
}

QString keyPath(const QString& path, const QString& key) {
    if (isIdentifier(key)) {
        return path.isEmpty() ? key : path + QLatin1Char('.') + key;
    }
    QString quoted = key;
    quoted.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('"'), QLatin1String("\\\""));
    return path + QLatin1String("[\"") + quoted + QLatin1String("\"]");
}

double toDouble(const QJsonValue& value, const QString& path) {
    if (!value.isDouble()) {
        throwTypeMismatch(value, path, "a number");
    }
    return value.toDouble();
}

QString toString(const QJsonValue& value, const QString& path) {
    if (!value.isString()) {
        throwTypeMismatch(value, path, "a string");
    }
    return value.toString();
}

bool toBool(const QJsonValue& value, const QString& path) {
    if (!value.isBool()) {
        throwTypeMismatch(value, path, "a boolean");
    }
    return value.toBool();
}

std::int64_t toInt(const QJsonValue& value, const QString& path) {
    const double number = toDouble(value, path);
    if (isInteger(value)) {
        return value.toInteger();
    }
    if (!isWhole(number)) {
        throw JsonDecodingError(JsonDecodingError::Kind::DataCorrupted, path,
                                QStringLiteral("%1 is not a whole number").arg(numberText(value)));
    }
    // A whole double that the parser did not keep as a 64-bit integer is out of its range.
    throw JsonDecodingError(
        JsonDecodingError::Kind::DataCorrupted, path,
        QStringLiteral("%1 does not fit in a 64-bit integer").arg(numberText(value)));
}

std::uint32_t toUInt32(const QJsonValue& value, const QString& path) {
    const double number = toDouble(value, path);
    if (!isInteger(value) && !isWhole(number)) {
        throw JsonDecodingError(JsonDecodingError::Kind::DataCorrupted, path,
                                QStringLiteral("%1 is not a whole number").arg(numberText(value)));
    }
    if (number < 0.0 || number > 4294967295.0) {
        throw JsonDecodingError(
            JsonDecodingError::Kind::DataCorrupted, path,
            QStringLiteral("%1 is outside the range 0 to 4294967295").arg(numberText(value)));
    }
    return static_cast<std::uint32_t>(number);
}

QJsonArray toArray(const QJsonValue& value, const QString& path) {
    if (!value.isArray()) {
        throwTypeMismatch(value, path, "an array");
    }
    return value.toArray();
}

QJsonObject toObject(const QJsonValue& value, const QString& path) {
    if (!value.isObject()) {
        throwTypeMismatch(value, path, "an object");
    }
    return value.toObject();
}

QString numberText(const QJsonValue& value) {
    if (isInteger(value)) {
        return QString::number(value.toInteger());
    }
    const double number = value.toDouble();
    // A whole number keeps all its digits up to where the exponent form is shorter anyway.
    char buffer[64];
    const auto result =
        isWhole(number) && std::abs(number) < 1e21
            ? std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed)
            : std::to_chars(buffer, buffer + sizeof buffer, number);
    return QString::fromLatin1(buffer, static_cast<qsizetype>(result.ptr - buffer));
}

QString StructureExcess::describe(const StructureLimits& limits) const {
    return kind == Kind::Depth
               ? QStringLiteral("more than %1 levels of nested arrays and objects")
                     .arg(limits.maxDepth)
               : QStringLiteral("more than %1 arrays and objects").arg(limits.maxContainers);
}

std::optional<StructureExcess> excessiveStructure(const QByteArray& data,
                                                  const StructureLimits& limits) {
    int depth = 0;
    qsizetype containers = 0;
    bool inString = false;
    const char* bytes = data.constData();
    for (qsizetype i = 0, size = data.size(); i < size; ++i) {
        const char c = bytes[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        switch (c) {
        case '"':
            inString = true;
            break;
        case '[':
        case '{':
            if (++depth > limits.maxDepth) {
                return StructureExcess{StructureExcess::Kind::Depth, i};
            }
            if (++containers > limits.maxContainers) {
                return StructureExcess{StructureExcess::Kind::Containers, i};
            }
            break;
        case ']':
        case '}':
            depth = std::max(0, depth - 1);
            break;
        default:
            break;
        }
    }
    return std::nullopt;
}

} // namespace json

JsonObjectReader::JsonObjectReader(const QJsonValue& value, const QString& path)
    : object_(json::toObject(value, path))
    , path_(path) {}

QString JsonObjectReader::pathOf(const QString& key) const {
    return json::keyPath(path_, key);
}

bool JsonObjectReader::contains(const QString& key) const {
    return object_.contains(key);
}

QJsonValue JsonObjectReader::requireValue(const QString& key) const {
    const auto it = object_.constFind(key);
    if (it == object_.constEnd()) {
        throw JsonDecodingError(JsonDecodingError::Kind::KeyNotFound, path_,
                                QStringLiteral("no value for key \"%1\"").arg(key));
    }
    if (it->isNull()) {
        throw JsonDecodingError(JsonDecodingError::Kind::ValueNotFound, pathOf(key),
                                QStringLiteral("expected a value but found null"));
    }
    return *it;
}

std::optional<QJsonValue> JsonObjectReader::optionalValue(const QString& key) const {
    const auto it = object_.constFind(key);
    if (it == object_.constEnd() || it->isNull()) {
        return std::nullopt;
    }
    return *it;
}

// The path of a value is only spelled out when there is an error to report: a large document has
// hundreds of thousands of values.
double JsonObjectReader::requireDouble(const QString& key) const {
    const QJsonValue value = requireValue(key);
    return value.isDouble() ? value.toDouble() : json::toDouble(value, pathOf(key));
}

QString JsonObjectReader::requireString(const QString& key) const {
    const QJsonValue value = requireValue(key);
    return value.isString() ? value.toString() : json::toString(value, pathOf(key));
}

bool JsonObjectReader::requireBool(const QString& key) const {
    const QJsonValue value = requireValue(key);
    return value.isBool() ? value.toBool() : json::toBool(value, pathOf(key));
}

std::int64_t JsonObjectReader::requireInt(const QString& key) const {
    return json::toInt(requireValue(key), pathOf(key));
}

std::uint32_t JsonObjectReader::requireUInt32(const QString& key) const {
    return json::toUInt32(requireValue(key), pathOf(key));
}

QJsonArray JsonObjectReader::requireArray(const QString& key) const {
    const QJsonValue value = requireValue(key);
    return value.isArray() ? value.toArray() : json::toArray(value, pathOf(key));
}

QJsonObject JsonObjectReader::requireObject(const QString& key) const {
    return json::toObject(requireValue(key), pathOf(key));
}

JsonObjectReader JsonObjectReader::requireReader(const QString& key) const {
    return JsonObjectReader(requireValue(key), pathOf(key));
}

std::vector<double> JsonObjectReader::requireDoubleArray(const QString& key) const {
    const QJsonArray array = requireArray(key);
    std::vector<double> values;
    values.reserve(static_cast<size_t>(array.size()));
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QJsonValue element = array.at(i);
        values.push_back(element.isDouble()
                             ? element.toDouble()
                             : json::toDouble(element, json::indexPath(pathOf(key), i)));
    }
    return values;
}

std::optional<double> JsonObjectReader::optionalDouble(const QString& key) const {
    const auto value = optionalValue(key);
    return value ? std::optional(json::toDouble(*value, pathOf(key))) : std::nullopt;
}

std::optional<QString> JsonObjectReader::optionalString(const QString& key) const {
    const auto value = optionalValue(key);
    return value ? std::optional(json::toString(*value, pathOf(key))) : std::nullopt;
}

std::optional<bool> JsonObjectReader::optionalBool(const QString& key) const {
    const auto value = optionalValue(key);
    return value ? std::optional(json::toBool(*value, pathOf(key))) : std::nullopt;
}

std::optional<std::uint32_t> JsonObjectReader::optionalUInt32(const QString& key) const {
    const auto value = optionalValue(key);
    return value ? std::optional(json::toUInt32(*value, pathOf(key))) : std::nullopt;
}

std::optional<JsonObjectReader> JsonObjectReader::optionalReader(const QString& key) const {
    const auto value = optionalValue(key);
    return value ? std::optional(JsonObjectReader(*value, pathOf(key))) : std::nullopt;
}

} // namespace paneforge
