#include "core/config/pretty_json.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>

namespace paneforge::PrettyJSON {

namespace {

const QStringList kLayoutKeys = {QStringLiteral("id"), QStringLiteral("name"),
                                 QStringLiteral("horizontalSplits"),
                                 QStringLiteral("verticalSplits")};

void appendIndent(QString& out, int level) {
    out.append(QString(level * 2, QLatin1Char(' ')));
}

bool isGrid(const QJsonObject& object) {
    return std::all_of(kLayoutKeys.begin(), kLayoutKeys.end(),
                       [&](const QString& key) { return object.contains(key); });
}

// A UTF-16 unit weighted so that comparing units compares code points: surrogates (which carry
// the characters beyond the Basic Multilingual Plane) sort after every other unit.
char16_t codePointWeight(char16_t unit) {
    if (unit >= 0xD800 && unit <= 0xDFFF) {
        return static_cast<char16_t>(unit + 0x2000);
    }
    if (unit >= 0xE000) {
        return static_cast<char16_t>(unit - 0x800);
    }
    return unit;
}

// Code-point order without converting the keys; QString's own comparison orders by UTF-16 units,
// which differs for characters beyond the Basic Multilingual Plane.
bool codePointLess(const QString& a, const QString& b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(), [](QChar x, QChar y) {
            return codePointWeight(x.unicode()) < codePointWeight(y.unicode());
        });
}

void writeTo(QString& out, const QJsonValue& value, int level);

// Entries and elements are appended to one buffer as they are visited, so printing is linear in
// the size of the document, however deep it nests.
void writeContainer(QString& out, QChar open, QChar close, int level, qsizetype count,
                    const std::function<void(qsizetype)>& writeEntry) {
    out.append(open);
    out.append(QLatin1Char('\n'));
    if (count == 0) {
        out.append(QLatin1Char('\n'));
    }
    for (qsizetype i = 0; i < count; ++i) {
        if (i > 0) {
            out.append(QLatin1String(",\n"));
        }
        appendIndent(out, level + 1);
        writeEntry(i);
    }
    if (count > 0) {
        out.append(QLatin1Char('\n'));
    }
    appendIndent(out, level);
    out.append(close);
}

void writeObject(QString& out, const QJsonObject& object, int level) {
    QStringList keys;
    if (isGrid(object)) {
        keys = kLayoutKeys;
    } else {
        keys = object.keys();
        std::sort(keys.begin(), keys.end(), codePointLess);
    }
    writeContainer(out, QLatin1Char('{'), QLatin1Char('}'), level, keys.size(), [&](qsizetype i) {
        appendJsonString(out, keys.at(i));
        out.append(QLatin1String(" : "));
        writeTo(out, object.value(keys.at(i)), level + 1);
    });
}

void writeArray(QString& out, const QJsonArray& array, int level) {
    writeContainer(out, QLatin1Char('['), QLatin1Char(']'), level, array.size(),
                   [&](qsizetype i) { writeTo(out, array.at(i), level + 1); });
}

void writeTo(QString& out, const QJsonValue& value, int level) {
    switch (value.type()) {
    case QJsonValue::Object:
        writeObject(out, value.toObject(), level);
        return;
    case QJsonValue::Array:
        writeArray(out, value.toArray(), level);
        return;
    case QJsonValue::String:
        appendJsonString(out, value.toString());
        return;
    case QJsonValue::Double:
        out.append(writeNumber(value.toDouble()));
        return;
    case QJsonValue::Bool:
        out.append(value.toBool() ? QLatin1String("true") : QLatin1String("false"));
        return;
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    out.append(QLatin1String("null"));
}

} // namespace

QString jsonString(const QString& text) {
    QString out;
    out.reserve(text.size() + 2);
    appendJsonString(out, text);
    return out;
}

void appendJsonString(QString& out, const QString& text) {
    out.append(QLatin1Char('"'));
    // Runs of characters that need no escape are copied whole.
    qsizetype runStart = 0;
    const auto flush = [&](qsizetype end) {
        out.append(QStringView(text).mid(runStart, end - runStart));
        runStart = end + 1;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() &&
            QChar::isLowSurrogate(text.at(i + 1).unicode())) {
            ++i; // a character beyond the Basic Multilingual Plane, written as it is
            continue;
        }
        if (c >= 0x20 && c != u'"' && c != u'\\' && c != u'/' && !QChar::isSurrogate(c)) {
            continue;
        }
        flush(i);
        switch (c) {
        case u'"':
            out.append(QLatin1String("\\\""));
            break;
        case u'\\':
            out.append(QLatin1String("\\\\"));
            break;
        case u'/':
            out.append(QLatin1String("\\/"));
            break;
        case u'\b':
            out.append(QLatin1String("\\b"));
            break;
        case u'\f':
            out.append(QLatin1String("\\f"));
            break;
        case u'\n':
            out.append(QLatin1String("\\n"));
            break;
        case u'\r':
            out.append(QLatin1String("\\r"));
            break;
        case u'\t':
            out.append(QLatin1String("\\t"));
            break;
        default:
            // Control characters, and surrogates without their other half, which UTF-8 cannot
            // carry: escaped, they read back as they were.
            out.append(QStringLiteral("\\u%1").arg(int(c), 4, 16, QLatin1Char('0')));
        }
    }
    flush(text.size());
    out.append(QLatin1Char('"'));
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
    QString out;
    writeTo(out, value, level);
    return out;
}

} // namespace paneforge::PrettyJSON
