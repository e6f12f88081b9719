#include "release/info_plist.h"

#include <QXmlStreamReader>

namespace paneforge::release {

namespace {

QVariant readValue(QXmlStreamReader& xml);

QVariantMap readDictionary(QXmlStreamReader& xml) {
    QVariantMap dictionary;
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("key")) {
            throw InfoPlistError(QStringLiteral("line %1: <%2> where a <key> belongs")
                                     .arg(xml.lineNumber())
                                     .arg(xml.name().toString()));
        }
        const QString key = xml.readElementText();
        if (!xml.readNextStartElement()) {
            throw InfoPlistError(QStringLiteral("the key %1 has no value").arg(key));
        }
        dictionary.insert(key, readValue(xml));
    }
    return dictionary;
}

QVariant readValue(QXmlStreamReader& xml) {
    const QString type = xml.name().toString();
    if (type == QLatin1String("dict")) {
        return readDictionary(xml);
    }
    if (type == QLatin1String("array")) {
        QVariantList list;
        while (xml.readNextStartElement()) {
            list << readValue(xml);
        }
        return list;
    }
    if (type == QLatin1String("true") || type == QLatin1String("false")) {
        xml.skipCurrentElement();
        return type == QLatin1String("true");
    }
    const QString text = xml.readElementText();
    if (type == QLatin1String("string")) {
        return text;
    }
    bool ok = false;
    if (type == QLatin1String("integer")) {
        const qlonglong value = text.trimmed().toLongLong(&ok);
        if (ok) {
            return value;
        }
    } else if (type == QLatin1String("real")) {
        const double value = text.trimmed().toDouble(&ok);
        if (ok) {
            return value;
        }
    } else {
        throw InfoPlistError(
            QStringLiteral("line %1: unknown value type <%2>").arg(xml.lineNumber()).arg(type));
    }
    throw InfoPlistError(QStringLiteral("“%1” is not a valid <%2>").arg(text, type));
}

} // namespace

InfoPlistError::InfoPlistError(const QString& message)
    : std::runtime_error(message.toStdString())
    , message_(message) {}

QVariantMap readInfoPlist(const QByteArray& plist) {
    if (plist.startsWith("bplist")) {
        throw InfoPlistError(QStringLiteral("a binary property list; convert it with "
                                            "“plutil -convert xml1 FILE” first"));
    }
    QXmlStreamReader xml(plist);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("plist")) {
        throw InfoPlistError(xml.hasError() ? QStringLiteral("not XML: %1").arg(xml.errorString())
                                            : QStringLiteral("not a property list"));
    }
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("dict")) {
        throw InfoPlistError(QStringLiteral("the property list holds no dictionary"));
    }
    const QVariantMap dictionary = readDictionary(xml);
    while (!xml.atEnd() && !xml.hasError()) {
        xml.readNext();
    }
    if (xml.hasError()) {
        throw InfoPlistError(QStringLiteral("not valid XML (line %1): %2")
                                 .arg(xml.lineNumber())
                                 .arg(xml.errorString()));
    }
    return dictionary;
}

QString infoPlistString(const QByteArray& plist, const QString& key) {
    const QVariant value = readInfoPlist(plist).value(key);
    if (!value.isValid()) {
        throw InfoPlistError(QStringLiteral("it has no %1").arg(key));
    }
    if (value.typeId() != QMetaType::QString) {
        throw InfoPlistError(QStringLiteral("%1 is not a string").arg(key));
    }
    return value.toString().trimmed();
}

} // namespace paneforge::release
