#include "release/appcast.h"

#include <QLocale>
#include <QTest>

using namespace paneforge::release;

namespace {

// 64 bytes of base64, the size of an EdDSA signature.
const QString kSignature = QString::fromLatin1(QByteArray(64, 's').toBase64());

AppcastItem item(const QString& version, const QString& file = {}) {
    AppcastItem item;
    item.title = QStringLiteral("Version ") + version;
    item.version = ReleaseVersion::parse(version);
    item.shortVersion = item.version;
    item.publicationDate = QDateTime(QDate(2026, 11, 23), QTime(10, 30, 5), Qt::UTC);
    item.minimumSystemVersion = QStringLiteral("12.0.0");
    item.url = QUrl(QStringLiteral("https://downloads.example.org/paneforge/") +
                    (file.isEmpty() ? QStringLiteral("Paneforge-%1.dmg").arg(version) : file));
    item.length = 1234567;
    item.edSignature = kSignature;
    return item;
}

FeedChannel channel() {
    return {QStringLiteral("Paneforge"), QUrl(QStringLiteral("https://paneforge.example.org/")),
            QStringLiteral("Paneforge updates"), QStringLiteral("en")};
}

QString failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const AppcastError& error) {
        return error.message();
    }
    return {};
}

using Entries = std::vector<FeedEntry>;

} // namespace

Q_DECLARE_METATYPE(FeedChannel)
Q_DECLARE_METATYPE(Entries)

class AppcastTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itemAsSparkleReadsIt() {
        AppcastItem release = item("1.2.1");
        release.releaseNotesLink = QUrl("https://paneforge.example.org/notes/1.2.1.html");
        const QByteArray expected = QByteArrayLiteral(
            "<item xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">\n"
            "    <title>Version 1.2.1</title>\n"
            "    <pubDate>Mon, 23 Nov 2026 10:30:05 +0000</pubDate>\n"
            "    <sparkle:version>1.2.1</sparkle:version>\n"
            "    <sparkle:shortVersionString>1.2.1</sparkle:shortVersionString>\n"
            "    <sparkle:minimumSystemVersion>12.0.0</sparkle:minimumSystemVersion>\n"
            "    <sparkle:releaseNotesLink>https://paneforge.example.org/notes/1.2.1.html"
            "</sparkle:releaseNotesLink>\n"
            "    <enclosure url=\"https://downloads.example.org/paneforge/Paneforge-1.2.1.dmg\" "
            "length=\"1234567\" type=\"application/octet-stream\" sparkle:edSignature=\"");
        QCOMPARE(itemXml(release), expected + kSignature.toLatin1() + "\"/>\n</item>\n");
    }

    // Written newest first: ReleaseCliTest::feedFromItemsAndAnEarlierFeed; read back:
    // readsWhatItWrites.
    void feedRefusals_data() {
        QTest::addColumn<FeedChannel>("channel");
        QTest::addColumn<Entries>("entries");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* tag, const FeedChannel& channel, const Entries& entries,
                            const char* error) {
            QTest::newRow(tag) << channel << entries << QString(error);
        };
        const auto entry = [](const char* version, const QString& file) {
            return FeedEntry{item(version, file + ".dmg"), file};
        };
        const QUrl link("https://paneforge.example.org/");
        row("same version", channel(), {entry("1.2", "a"), entry("1.3", "b"), entry("1.2", "c")},
            "version 1.2 would be in the feed twice: a and c (one item per version)");
        row("same version written otherwise", channel(), {entry("1.2", "a"), entry("1.2.0", "b")},
            "version 1.2 would be in the feed twice: a and b");
        row("same download", channel(), {entry("1.2", "a"), {item("1.3", "a.dmg"), "b"}},
            "versions 1.3 and 1.2 both download https://downloads.example.org/paneforge/a.dmg");
        row("no title", {" ", link, "updates"}, {}, "the feed needs a title");
    }

    void feedRefusals() {
        QFETCH(FeedChannel, channel);
        QFETCH(Entries, entries);
        QFETCH(QString, error);
        const QString message = failure([&] { feedXml(channel, entries); });
        QVERIFY2(message.startsWith(error), qPrintable(message));
    }

    void readsWhatItWrites() {
        // A build number as the version, the marketing version apart.
        AppcastItem first = item("1.2rc1");
        first.version = ReleaseVersion::parse("1201");
        first.releaseNotesLink = QUrl("https://paneforge.example.org/notes.html");
        const AppcastItem second = item("1.1");
        const std::vector<AppcastItem> fromFeed =
            readItems(feedXml(channel(), {{second, "b"}, {first, "a"}}));
        QCOMPARE(fromFeed.size(), std::size_t(2));
        QCOMPARE(itemXml(fromFeed[0]), itemXml(first));
        QCOMPARE(itemXml(fromFeed[1]), itemXml(second));
    }

    void readRefusals_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("error");
        const QByteArray good = itemXml(item("1.0"));
        const auto edit = [&](const char* from, const char* to) {
            QByteArray changed = good;
            changed.replace(from, to);
            return changed;
        };
        const auto row = [](const char* tag, const QByteArray& xml, const char* error) {
            QTest::newRow(tag) << xml << QString(error);
        };
        row("not xml", "version 1.0", "not XML");
        row("other root", "<feed/>", "<feed> is neither an <item>");
        row("unknown element", edit("<title>", "<sparkle:criticalUpdate/><title>"),
            "item 1: it has <sparkle:criticalUpdate>, which this tool does not write");
        row("no enclosure",
            edit("<enclosure", "<!--enclosure").replace("/>\n</item>", "-->\n</item>"),
            "it has no <enclosure>");
        row("malformed version", edit("<sparkle:version>1.0<", "<sparkle:version>1.0-beta<"),
            "“1.0-beta” is not a version");
        row("plain http", edit("https://downloads", "http://downloads"), "must use https");
        row("broken after the item", good + "<item>", "not valid XML");
    }

    void readRefusals() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, error);
        const QString message = failure([&] { readItems(xml); });
        QVERIFY2(message.contains(error), qPrintable(message));
    }

    // The fields a release engineer gives: the text, what it becomes, or the error.
    void fields_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* tag, const char* field, const QString& given,
                            const QString& expected, const char* error) {
            QTest::newRow(tag) << QString(field) << given << expected << QString(error);
        };
        // A plain signature, the minimum system's padding and an ISO date: tst_release_cli.
        row("signature padded with space", "signature", "  " + kSignature + "\n", kSignature, "");
        row("sign_update output", "signature",
            "sparkle:edSignature=\"" + kSignature + "\" length=\"100\"", kSignature, "");
        row("signature not base64", "signature", QString(88, QChar('!')), "",
            "is not an EdDSA signature");
        row("system: four parts", "system", "13.5.1.2", "",
            "is not a macOS version such as 12.0 or 13.5.1");
        const QString date = "Mon, 05 Oct 2015 19:20:11 +0000";
        row("date: RFC 822 with offset", "date", "Mon, 05 Oct 2015 21:20:11 +0200", date, "");
        row("date: ISO 8601 with offset", "date", "2015-10-05T21:20:11+02:00", date, "");
        row("date: no zone", "date", "2015-10-05T19:20:11", "", "is not a date");
        row("relative url", "url", "Paneforge.dmg", "",
            "the URL “Paneforge.dmg” is not an absolute URL");
    }

    void fields() {
        QFETCH(QString, field);
        QFETCH(QString, given);
        QFETCH(QString, expected);
        QFETCH(QString, error);
        QString result;
        const QString message = failure([&] {
            result = field == "signature" ? edSignatureFrom(given, 100)
                     : field == "system"  ? normalizedMinimumSystemVersion(given)
                     : field == "date"    ? formatPublicationDate(parsePublicationDate(given))
                                          : httpsUrl(given, "URL").toString(QUrl::FullyEncoded);
        });
        QCOMPARE(result, expected);
        QVERIFY2(error.isEmpty() ? message.isEmpty() : message.contains(error),
                 qPrintable(message));
    }

    void datesAreWrittenInEnglishAndUtc() {
        const QDateTime date(QDate(2015, 10, 5), QTime(19, 20, 11), Qt::UTC);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(formatPublicationDate(date.toOffsetFromUtc(7200)),
                 QString("Mon, 05 Oct 2015 19:20:11 +0000"));
        QLocale::setDefault(QLocale::c());
    }
};

QTEST_GUILESS_MAIN(AppcastTest)
#include "tst_appcast.moc"
