#include "release/appcast.h"

#include <QLocale>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <algorithm>

namespace paneforge::release {

namespace {

constexpr qsizetype kEdSignatureBytes = 64;

void writeItemElement(QXmlStreamWriter& xml, const AppcastItem& item) {
    xml.writeStartElement(QStringLiteral("item"));
    xml.writeTextElement(QStringLiteral("title"), item.title);
    xml.writeTextElement(QStringLiteral("pubDate"), formatPublicationDate(item.publicationDate));
    xml.writeTextElement(kSparkleNamespace, QStringLiteral("version"), item.version.text());
    xml.writeTextElement(kSparkleNamespace, QStringLiteral("shortVersionString"),
                         item.shortVersion.text());
    xml.writeTextElement(kSparkleNamespace, QStringLiteral("minimumSystemVersion"),
                         item.minimumSystemVersion);
    if (!item.releaseNotesLink.isEmpty()) {
        xml.writeTextElement(kSparkleNamespace, QStringLiteral("releaseNotesLink"),
                             item.releaseNotesLink.toString(QUrl::FullyEncoded));
    }
    xml.writeEmptyElement(QStringLiteral("enclosure"));
    xml.writeAttribute(QStringLiteral("url"), item.url.toString(QUrl::FullyEncoded));
    xml.writeAttribute(QStringLiteral("length"), QString::number(item.length));
    xml.writeAttribute(QStringLiteral("type"), kEnclosureType);
    xml.writeAttribute(kSparkleNamespace, QStringLiteral("edSignature"), item.edSignature);
    xml.writeEndElement();
}

void startWriter(QXmlStreamWriter& xml) {
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(4);
}

// The parts of one <item> as read, before validation.
struct ReadItem {
    std::optional<QString> title;
    std::optional<QString> pubDate;
    std::optional<QString> version;
    std::optional<QString> shortVersion;
    std::optional<QString> minimumSystemVersion;
    std::optional<QString> releaseNotesLink;
    bool hasEnclosure = false;
    std::optional<QString> url;
    std::optional<QString> length;
    std::optional<QString> type;
    std::optional<QString> edSignature;
};

// The name as this tool writes it: "sparkle:" stands for Sparkle's namespace whatever prefix the
// file binds to it, and a name in any other namespace never matches one of ours.
QString qualifiedName(QStringView namespaceUri, QStringView name, QStringView written) {
    if (namespaceUri.isEmpty()) {
        return name.toString();
    }
    if (namespaceUri == kSparkleNamespace) {
        return QStringLiteral("sparkle:") + name.toString();
    }
    return QStringLiteral("%1 (namespace %2)").arg(written, namespaceUri);
}

QString elementName(const QXmlStreamReader& xml) {
    return qualifiedName(xml.namespaceUri(), xml.name(), xml.qualifiedName());
}

void setOnce(std::optional<QString>& field, const QString& value, const QString& name) {
    if (field) {
        throw AppcastError(QStringLiteral("<%1> appears twice").arg(name));
    }
    field = value;
}

QString required(const std::optional<QString>& field, const QString& what) {
    if (!field) {
        throw AppcastError(QStringLiteral("it has no %1").arg(what));
    }
    return field->trimmed();
}

void readEnclosure(QXmlStreamReader& xml, ReadItem& item) {
    if (item.hasEnclosure) {
        throw AppcastError(QStringLiteral("<enclosure> appears twice"));
    }
    item.hasEnclosure = true;
    for (const QXmlStreamAttribute& attribute : xml.attributes()) {
        const QString name =
            qualifiedName(attribute.namespaceUri(), attribute.name(), attribute.qualifiedName());
        const QString value = attribute.value().toString();
        if (name == QLatin1String("url")) {
            item.url = value;
        } else if (name == QLatin1String("length")) {
            item.length = value;
        } else if (name == QLatin1String("type")) {
            item.type = value;
        } else if (name == QLatin1String("sparkle:edSignature")) {
            item.edSignature = value;
        } else {
            throw AppcastError(
                QStringLiteral("its enclosure has the attribute %1, which this tool does not write")
                    .arg(name));
        }
    }
    xml.skipCurrentElement();
}

AppcastItem readItem(QXmlStreamReader& xml) {
    ReadItem read;
    while (xml.readNextStartElement()) {
        const QString name = elementName(xml);
        if (name == QLatin1String("enclosure")) {
            readEnclosure(xml, read);
            continue;
        }
        std::optional<QString>* field = nullptr;
        if (name == QLatin1String("title")) {
            field = &read.title;
        } else if (name == QLatin1String("pubDate")) {
            field = &read.pubDate;
        } else if (name == QLatin1String("sparkle:version")) {
            field = &read.version;
        } else if (name == QLatin1String("sparkle:shortVersionString")) {
            field = &read.shortVersion;
        } else if (name == QLatin1String("sparkle:minimumSystemVersion")) {
            field = &read.minimumSystemVersion;
        } else if (name == QLatin1String("sparkle:releaseNotesLink")) {
            field = &read.releaseNotesLink;
        } else {
            throw AppcastError(
                QStringLiteral("it has <%1>, which this tool does not write").arg(name));
        }
        const QString text = xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        if (xml.hasError()) {
            return {};
        }
        setOnce(*field, text, name);
    }
    if (xml.hasError()) {
        return {};
    }

    AppcastItem item;
    item.title = required(read.title, QStringLiteral("<title>"));
    item.publicationDate =
        parsePublicationDate(required(read.pubDate, QStringLiteral("<pubDate>")));
    try {
        item.version =
            ReleaseVersion::parse(required(read.version, QStringLiteral("<sparkle:version>")));
        item.shortVersion = ReleaseVersion::parse(
            required(read.shortVersion, QStringLiteral("<sparkle:shortVersionString>")));
    } catch (const ReleaseVersionError& error) {
        throw AppcastError(error.message());
    }
    item.minimumSystemVersion = normalizedMinimumSystemVersion(
        required(read.minimumSystemVersion, QStringLiteral("<sparkle:minimumSystemVersion>")));
    if (read.releaseNotesLink) {
        item.releaseNotesLink =
            httpsUrl(read.releaseNotesLink->trimmed(), QStringLiteral("release notes link"));
    }
    if (!read.hasEnclosure) {
        throw AppcastError(QStringLiteral("it has no <enclosure>"));
    }
    item.url = httpsUrl(required(read.url, QStringLiteral("enclosure url")),
                        QStringLiteral("enclosure url"));
    const QString length = required(read.length, QStringLiteral("enclosure length"));
    bool lengthOk = false;
    item.length = length.toLongLong(&lengthOk);
    if (!lengthOk) {
        throw AppcastError(QStringLiteral("its enclosure length “%1” is not a number").arg(length));
    }
    const QString type = required(read.type, QStringLiteral("enclosure type"));
    if (type != kEnclosureType) {
        throw AppcastError(
            QStringLiteral("its enclosure type is “%1”, not “%2”").arg(type, kEnclosureType));
    }
    item.edSignature = required(read.edSignature, QStringLiteral("sparkle:edSignature"));
    validateItem(item);
    return item;
}

} // namespace

AppcastError::AppcastError(const QString& message)
    : std::runtime_error(message.toStdString())
    , message_(message) {}

QString normalizedMinimumSystemVersion(const QString& text) {
    static const QRegularExpression pattern(
        QStringLiteral("^(0|[1-9][0-9]{0,3})(\\.(0|[1-9][0-9]{0,3})){0,2}$"));
    if (!pattern.match(text).hasMatch()) {
        throw AppcastError(
            QStringLiteral("“%1” is not a macOS version such as 12.0 or 13.5.1").arg(text));
    }
    QStringList parts = text.split(QLatin1Char('.'));
    while (parts.size() < 3) {
        parts << QStringLiteral("0");
    }
    return parts.join(QLatin1Char('.'));
}

QString edSignatureFrom(const QString& text, qint64 fileLength) {
    QString signature = text.trimmed();
    static const QRegularExpression signUpdate(
        QStringLiteral("sparkle:edSignature=\"([^\"]*)\"(?:\\s+length=\"([0-9]+)\")?"));
    if (const auto match = signUpdate.match(signature); match.hasMatch()) {
        if (match.hasCaptured(2) && match.captured(2).toLongLong() != fileLength) {
            throw AppcastError(QStringLiteral("the signature was made for a file of %1 bytes, but "
                                              "this one has %2 bytes: sign this file")
                                   .arg(match.captured(2))
                                   .arg(fileLength));
        }
        signature = match.captured(1);
    }
    const auto decoded = QByteArray::fromBase64Encoding(signature.toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (signature.isEmpty() || !decoded || decoded.decoded.size() != kEdSignatureBytes ||
        signature.toLatin1() != decoded.decoded.toBase64()) {
        throw AppcastError(QStringLiteral("“%1” is not an EdDSA signature from Sparkle's "
                                          "sign_update (88 characters of base64)")
                               .arg(signature));
    }
    return signature;
}

QUrl httpsUrl(const QString& text, const QString& what) {
    // Tolerant: a space becomes %20, as a browser would send it.
    const QUrl url(text, QUrl::TolerantMode);
    if (!url.isValid() || url.isRelative() || url.host().isEmpty()) {
        throw AppcastError(QStringLiteral("the %1 “%2” is not an absolute URL").arg(what, text));
    }
    if (url.scheme() != QLatin1String("https")) {
        throw AppcastError(
            QStringLiteral("the %1 “%2” must use https: macOS refuses plain downloads")
                .arg(what, text));
    }
    return url;
}

QString formatPublicationDate(const QDateTime& date) {
    return QLocale::c().toString(date.toUTC(), QStringLiteral("ddd, dd MMM yyyy HH:mm:ss")) +
           QStringLiteral(" +0000");
}

QDateTime parsePublicationDate(const QString& text) {
    QDateTime date = QDateTime::fromString(text, Qt::RFC2822Date);
    if (!date.isValid()) {
        // ISO 8601 only with a time zone: a date without one would depend on the machine.
        static const QRegularExpression zoned(QStringLiteral("(Z|[+-][0-9]{2}:?[0-9]{2})$"));
        if (zoned.match(text).hasMatch()) {
            date = QDateTime::fromString(text, Qt::ISODate);
        }
    }
    if (!date.isValid()) {
        throw AppcastError(QStringLiteral("“%1” is not a date such as “Mon, 05 Oct 2015 19:20:11 "
                                          "+0000” or “2015-10-05T19:20:11Z”")
                               .arg(text));
    }
    return date.toUTC();
}

void validateItem(const AppcastItem& item) {
    if (item.title.trimmed().isEmpty()) {
        throw AppcastError(QStringLiteral("the title is empty"));
    }
    if (!item.publicationDate.isValid()) {
        throw AppcastError(QStringLiteral("the publication date is missing"));
    }
    if (normalizedMinimumSystemVersion(item.minimumSystemVersion) != item.minimumSystemVersion) {
        throw AppcastError(QStringLiteral("the minimum system version “%1” needs three parts")
                               .arg(item.minimumSystemVersion));
    }
    if (!item.releaseNotesLink.isEmpty()) {
        httpsUrl(item.releaseNotesLink.toString(QUrl::FullyEncoded),
                 QStringLiteral("release notes link"));
    }
    httpsUrl(item.url.toString(QUrl::FullyEncoded), QStringLiteral("enclosure url"));
    if (item.length <= 0) {
        throw AppcastError(QStringLiteral("the length %1 is not a file size").arg(item.length));
    }
    edSignatureFrom(item.edSignature, item.length);
}

QByteArray itemXml(const AppcastItem& item) {
    validateItem(item);
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    startWriter(xml);
    xml.writeNamespace(kSparkleNamespace, QStringLiteral("sparkle"));
    writeItemElement(xml, item);
    // Auto-formatting starts a document without a declaration with a line break.
    return bytes.trimmed() + '\n';
}

QByteArray feedXml(const FeedChannel& channel, std::vector<FeedEntry> entries) {
    if (channel.title.trimmed().isEmpty()) {
        throw AppcastError(QStringLiteral("the feed needs a title"));
    }
    if (channel.description.trimmed().isEmpty()) {
        throw AppcastError(QStringLiteral("the feed needs a description"));
    }
    if (!channel.link.isValid() || channel.link.isRelative() ||
        (channel.link.scheme() != QLatin1String("https") &&
         channel.link.scheme() != QLatin1String("http"))) {
        throw AppcastError(QStringLiteral("the feed's link “%1” is not a web address")
                               .arg(channel.link.toString()));
    }
    for (const FeedEntry& entry : entries) {
        try {
            validateItem(entry.item);
        } catch (const AppcastError& error) {
            throw AppcastError(QStringLiteral("%1: %2").arg(entry.origin, error.message()));
        }
    }
    std::stable_sort(entries.begin(), entries.end(), [](const FeedEntry& a, const FeedEntry& b) {
        return a.item.version > b.item.version;
    });
    for (std::size_t i = 1; i < entries.size(); ++i) {
        const FeedEntry& previous = entries[i - 1];
        const FeedEntry& current = entries[i];
        if (previous.item.version == current.item.version) {
            throw AppcastError(
                QStringLiteral("version %1 would be in the feed twice: %2 and %3 "
                               "(one item per version)")
                    .arg(previous.item.version.text(), previous.origin, current.origin));
        }
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (std::size_t j = i + 1; j < entries.size(); ++j) {
            if (entries[i].item.url == entries[j].item.url) {
                throw AppcastError(QStringLiteral("versions %1 and %2 both download %3")
                                       .arg(entries[i].item.version.text(),
                                            entries[j].item.version.text(),
                                            entries[i].item.url.toString()));
            }
        }
    }

    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    startWriter(xml);
    xml.writeStartDocument();
    xml.writeNamespace(kSparkleNamespace, QStringLiteral("sparkle"));
    xml.writeStartElement(QStringLiteral("rss"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
    xml.writeStartElement(QStringLiteral("channel"));
    xml.writeTextElement(QStringLiteral("title"), channel.title);
    xml.writeTextElement(QStringLiteral("link"), channel.link.toString(QUrl::FullyEncoded));
    xml.writeTextElement(QStringLiteral("description"), channel.description);
    xml.writeTextElement(QStringLiteral("language"), channel.language);
    for (const FeedEntry& entry : entries) {
        writeItemElement(xml, entry.item);
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return bytes;
}

std::vector<AppcastItem> readItems(const QByteArray& bytes) {
    if (bytes.trimmed().isEmpty()) {
        throw AppcastError(QStringLiteral("the file is empty"));
    }
    QXmlStreamReader xml(bytes);
    std::vector<AppcastItem> items;
    if (!xml.readNextStartElement()) {
        throw AppcastError(xml.hasError() ? QStringLiteral("not XML: %1").arg(xml.errorString())
                                          : QStringLiteral("the file is empty"));
    }
    const auto readOne = [&] {
        try {
            AppcastItem item = readItem(xml);
            if (!xml.hasError()) {
                items.push_back(std::move(item));
            }
        } catch (const AppcastError& error) {
            throw AppcastError(
                QStringLiteral("item %1: %2").arg(items.size() + 1).arg(error.message()));
        }
    };
    if (xml.name() == QLatin1String("item") && xml.namespaceUri().isEmpty()) {
        readOne();
    } else if (xml.name() == QLatin1String("rss") && xml.namespaceUri().isEmpty()) {
        while (!xml.hasError() && xml.readNextStartElement()) {
            if (xml.name() != QLatin1String("channel")) {
                xml.skipCurrentElement();
                continue;
            }
            while (!xml.hasError() && xml.readNextStartElement()) {
                if (xml.name() == QLatin1String("item") && xml.namespaceUri().isEmpty()) {
                    readOne();
                } else {
                    xml.skipCurrentElement();
                }
            }
        }
    } else {
        throw AppcastError(QStringLiteral("<%1> is neither an <item> nor an <rss> feed")
                               .arg(xml.qualifiedName().toString()));
    }
    // Reading on to the end catches anything malformed after the last item.
    while (!xml.atEnd() && !xml.hasError()) {
        xml.readNext();
    }
    if (xml.hasError()) {
        throw AppcastError(QStringLiteral("not valid XML (line %1): %2")
                               .arg(xml.lineNumber())
                               .arg(xml.errorString()));
    }
    return items;
}

} // namespace paneforge::release
