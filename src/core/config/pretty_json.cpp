#include "core/config/pretty_json.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace paneforge::PrettyJSON {

namespace {

const QStringList kLayoutKeys = {QStringLiteral("id"), QStringLiteral("name"),
                                 QStringLiteral("horizontalSplits"),
                                 QStringLiteral("verticalSplits")};

QString indent(int level) {
    return QString(level * 2, QLatin1Char(' '));
}

bool isGrid(const QJsonObject& object) {
    return std::all_of(kLayoutKeys.begin(), kLayoutKeys.end(),
                       [&](const QString& key) { return object.contains(key); });
}

// Code-point order; QString's own comparison orders by UTF-16 units, which differs for
// characters beyond the Basic Multilingual Plane.
bool codePointLess(const QString& a, const QString& b) {
    const QList<uint> x = a.toUcs4();
    const QList<uint> y = b.toUcs4();
    return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end());
}

QString container(const QStringList& lines, QChar open, QChar close, int level) {
    if (lines.isEmpty()) {
        return QString(open) + QLatin1String("\n\n") + indent(level) + close;
    }
    return QString(open) + QLatin1Char('\n') + lines.join(QLatin1String(",\n")) +
           QLatin1Char('\n') + indent(level) + close;
}

QStringList objectLines(const QJsonObject& object, int level) {
    QStringList keys;
    if (isGrid(object)) {
        keys = kLayoutKeys;
    } else {
        keys = object.keys();
        std::sort(keys.begin(), keys.end(), codePointLess);
    }
    QStringList lines;
    lines.reserve(keys.size());
    for (const QString& key : keys) {
        lines.append(indent(level) + jsonString(key) + QLatin1String(" : ") +
                     writeValue(object.value(key), level));
    }
    return lines;
}

QStringList arrayLines(const QJsonArray& array, int level) {
    QStringList lines;
    lines.reserve(array.size());
    for (const QJsonValue& element : array) {
        lines.append(indent(level) + writeValue(element, level));
    }
    return lines;
}

} // namespace

QString jsonString(const QString& text) {
    QString out;
    out.reserve(text.size() + 2);
    out.append(QLatin1Char('"'));
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '"':
            out.append(QLatin1String("\\\""));
            break;
        case '\\':
            out.append(QLatin1String("\\\\"));
            break;
        case '/':
            out.append(QLatin1String("\\/"));
            break;
        case '\b':
            out.append(QLatin1String("\\b"));
            break;
        case '\f':
            out.append(QLatin1String("\\f"));
            break;
        case '\n':
            out.append(QLatin1String("\\n"));
            break;
        case '\r':
            out.append(QLatin1String("\\r"));
            break;
        case '\t':
            out.append(QLatin1String("\\t"));
            break;
        default:
            if (c.unicode() < 0x20) {
                out.append(QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0')));
            } else {
                out.append(c);
            }
        }
    }
    out.append(QLatin1Char('"'));
    return out;
}

QString writeNumber(double value) {
    if (!std::isfinite(value)) {
        // JSON has no literal for these; the parser never produces them.
        return QStringLiteral("null");
    }
    if (value == 0.0) {
        return QStringLiteral("0");
    }
    char buffer[64];
    std::to_chars_result result{};
    if (std::trunc(value) == value && std::abs(value) < 1e17) {
        result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(value));
    } else {
        result = std::to_chars(buffer, buffer + sizeof buffer, value);
    }
    return QString::fromLatin1(buffer, static_cast<qsizetype>(result.ptr - buffer));
}

QString writeValue(const QJsonValue& value, int level) {
    switch (value.type()) {
    case QJsonValue::Object:
        return container(objectLines(value.toObject(), level + 1), QLatin1Char('{'),
                         QLatin1Char('}'), level);
    case QJsonValue::Array:
        return container(arrayLines(value.toArray(), level + 1), QLatin1Char('['), QLatin1Char(']'),
                         level);
    case QJsonValue::String:
        return jsonString(value.toString());
    case QJsonValue::Double:
        return writeNumber(value.toDouble());
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("null");
}

} // namespace paneforge::PrettyJSON
