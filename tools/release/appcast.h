#pragma once

#include "release/release_version.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUrl>
#include <optional>
#include <stdexcept>
#include <vector>

namespace paneforge::release {

// The XML namespace of Sparkle's elements and attributes (prefix "sparkle").
inline const QString kSparkleNamespace =
    QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");
// The enclosure type Sparkle's documentation gives for every archive.
inline const QString kEnclosureType = QStringLiteral("application/octet-stream");

// A feed or item that cannot be written or read. The message is for a person.
class AppcastError : public std::runtime_error {
public:
    explicit AppcastError(const QString& message);
    QString message() const { return message_; }

private:
    QString message_;
};

// One release in the update feed, as Sparkle reads an <item>:
//   <item>
//     <title>, <pubDate>, <sparkle:version>, <sparkle:shortVersionString>,
//     <sparkle:minimumSystemVersion>, optionally <sparkle:releaseNotesLink>,
//     <enclosure url length type sparkle:edSignature/>
//   </item>
struct AppcastItem {
    QString title;
    // The bundle's CFBundleVersion, which Sparkle compares.
    ReleaseVersion version;
    // The bundle's CFBundleShortVersionString, which Sparkle shows.
    ReleaseVersion shortVersion;
    QDateTime publicationDate;
    // major.minor.patch
    QString minimumSystemVersion;
    // Empty when the item has none.
    QUrl releaseNotesLink;
    QUrl url;
    qint64 length = 0;
    // Base64 of the 64-byte EdDSA signature that Sparkle's sign_update prints.
    QString edSignature;
};

// The feed's <channel> (RSS 2.0 requires its title, link and description).
struct FeedChannel {
    QString title;
    QUrl link;
    QString description;
    QString language = QStringLiteral("en");
};

// An item and where it came from, for error messages.
struct FeedEntry {
    AppcastItem item;
    QString origin;
};

// "12" and "12.0" become "12.0.0": Sparkle asks for three parts. Throws AppcastError.
QString normalizedMinimumSystemVersion(const QString& text);

// The signature from either the bare base64 text or sign_update's whole output
// (`sparkle:edSignature="…" length="…"`), checked to be 64 bytes. When the output names a length,
// it must be `fileLength`: a signature of another file is refused. Throws AppcastError.
QString edSignatureFrom(const QString& text, qint64 fileLength);

// A URL Sparkle can download: absolute and https (App Transport Security). Throws AppcastError.
QUrl httpsUrl(const QString& text, const QString& what);

// RFC 822 in English and UTC, as in Sparkle's examples: "Mon, 05 Oct 2015 19:20:11 +0000".
QString formatPublicationDate(const QDateTime& date);
// RFC 822 / 2822 dates, and ISO 8601 with a time zone. Throws AppcastError.
QDateTime parsePublicationDate(const QString& text);

// Throws AppcastError naming the first field that is wrong.
void validateItem(const AppcastItem& item);

// One <item> on its own, declaring the sparkle namespace itself so that the fragment is a whole
// XML document. Throws AppcastError for an invalid item.
QByteArray itemXml(const AppcastItem& item);

// The whole feed: the channel and its items, newest version first. Throws AppcastError when two
// entries have the same version (1.2 and 1.2.0 are the same) or the same download URL, or when an
// entry is invalid.
QByteArray feedXml(const FeedChannel& channel, std::vector<FeedEntry> entries);

// The items of an <item> fragment or of a whole <rss> feed, each validated. Elements this tool
// does not write are refused rather than dropped. Throws AppcastError ("item 2: …").
std::vector<AppcastItem> readItems(const QByteArray& xml);

} // namespace paneforge::release
