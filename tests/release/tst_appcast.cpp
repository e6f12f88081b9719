#include "release/appcast.h"

#include <QLocale>
#include <QTest>
#include <QXmlStreamReader>

using namespace paneforge::release;

namespace {

// 64 bytes of base64, the size of an EdDSA signature.
QString signature(char fill = 's') {
    return QString::fromLatin1(QByteArray(64, fill).toBase64());
}

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
    item.edSignature = signature();
    return item;
}

FeedChannel channel() {
    return {QStringLiteral("Paneforge"), QUrl(QStringLiteral("https://paneforge.example.org/")),
            QStringLiteral("Paneforge updates"), QStringLiteral("en")};
}

QStringList feedVersions(const QByteArray& feed) {
    QStringList versions;
    for (const AppcastItem& read : readItems(feed)) {
        versions << read.version.text();
    }
    return versions;
}

QString failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const AppcastError& error) {
        return error.message();
    }
    return {};
}

} // namespace

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
        QCOMPARE(itemXml(release), expected + signature().toLatin1() + "\"/>\n</item>\n");
    }

    void namesAreInSparklesNamespace() {
        const QByteArray feed = feedXml(channel(), {{item("1.0"), "a"}});
        QXmlStreamReader xml(feed);
        QStringList sparkleNames;
        QStringList plainNames;
        while (!xml.atEnd()) {
            xml.readNext();
            if (!xml.isStartElement()) {
                continue;
            }
            (xml.namespaceUri() == kSparkleNamespace ? sparkleNames : plainNames)
                << xml.name().toString();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(sparkleNames,
                 (QStringList{"version", "shortVersionString", "minimumSystemVersion"}));
        QCOMPARE(plainNames, (QStringList{"rss", "channel", "title", "link", "description",
                                          "language", "item", "title", "pubDate", "enclosure"}));
        QVERIFY(feed.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss "
                                "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/"
                                "sparkle\" version=\"2.0\">"));
    }

    void feedOrder_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("numbers") << QStringList{"1.2", "1.10", "1.2.1", "1.9"}
                                 << QStringList{"1.10", "1.9", "1.2.1", "1.2"};
        QTest::newRow("pre-releases") << QStringList{"2.0", "2.0b1", "1.9", "2.0rc1", "2.0b2"}
                                      << QStringList{"2.0", "2.0rc1", "2.0b2", "2.0b1", "1.9"};
        QTest::newRow("one") << QStringList{"0.1.0"} << QStringList{"0.1.0"};
        QTest::newRow("none") << QStringList{} << QStringList{};
    }

    void feedOrder() {
        QFETCH(QStringList, given);
        QFETCH(QStringList, expected);
        std::vector<FeedEntry> entries;
        for (const QString& version : given) {
            entries.push_back({item(version), version + ".xml"});
        }
        QCOMPARE(feedVersions(feedXml(channel(), entries)), expected);
    }

    void feedRefusals_data() {
        QTest::addColumn<QStringList>("versions");
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("error");
        QTest::newRow("same version")
            << QStringList{"1.2", "1.3", "1.2"} << QStringList{"a", "b", "c"}
            << "version 1.2 would be in the feed twice: 1.2 (1) and 1.2 (3) (one item per version)";
        QTest::newRow("same version written otherwise")
            << QStringList{"1.2", "1.2.0"} << QStringList{"a", "b"} << "in the feed twice";
        QTest::newRow("same pre-release")
            << QStringList{"1.2b1", "1.2.0b1"} << QStringList{"a", "b"} << "in the feed twice";
        QTest::newRow("same download")
            << QStringList{"1.2", "1.3"} << QStringList{"Paneforge.dmg", "Paneforge.dmg"}
            << "versions 1.3 and 1.2 both download "
               "https://downloads.example.org/paneforge/Paneforge.dmg";
    }

    void feedRefusals() {
        QFETCH(QStringList, versions);
        QFETCH(QStringList, files);
        QFETCH(QString, error);
        std::vector<FeedEntry> entries;
        for (qsizetype i = 0; i < versions.size(); ++i) {
            const QString file =
                files[i].endsWith(".dmg") ? files[i] : QStringLiteral("%1.dmg").arg(files[i]);
            entries.push_back(
                {item(versions[i], file), QStringLiteral("%1 (%2)").arg(versions[i]).arg(i + 1)});
        }
        const QString message = failure([&] { feedXml(channel(), entries); });
        QVERIFY2(message.contains(error), qPrintable(message));
    }

    void feedChannelChecks() {
        FeedChannel noTitle = channel();
        noTitle.title = " ";
        QCOMPARE(failure([&] { feedXml(noTitle, {}); }), QString("the feed needs a title"));
        FeedChannel badLink = channel();
        badLink.link = QUrl("paneforge");
        QVERIFY(failure([&] { feedXml(badLink, {}); }).contains("is not a web address"));
        AppcastItem broken = item("1.0");
        broken.length = 0;
        QCOMPARE(failure([&] {
                     feedXml(channel(), {{broken, "old.xml"}});
                 }),
                 QString("old.xml: the length 0 is not a file size"));
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

        const std::vector<AppcastItem> fromItem = readItems(itemXml(second));
        QCOMPARE(fromItem.size(), std::size_t(1));
        QCOMPARE(itemXml(fromItem[0]), itemXml(second));
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
        QTest::newRow("not xml") << QByteArray("version 1.0") << "not XML";
        QTest::newRow("empty") << QByteArray() << "the file is empty";
        QTest::newRow("other root") << QByteArray("<feed/>") << "<feed> is neither an <item>";
        QTest::newRow("unknown element")
            << edit("<title>", "<sparkle:criticalUpdate/><title>")
            << "item 1: it has <sparkle:criticalUpdate>, which this tool does not write";
        QTest::newRow("other namespace")
            << edit("http://www.andymatuschak.org/xml-namespaces/sparkle", "urn:other")
            << "item 1: it has <sparkle:version (namespace urn:other)>";
        QTest::newRow("twice") << edit("<title>", "<title>x</title><title>")
                               << "<title> appears twice";
        QTest::newRow("no enclosure")
            << edit("<enclosure", "<!--enclosure").replace("/>\n</item>", "-->\n</item>")
            << "it has no <enclosure>";
        QTest::newRow("no version")
            << edit("<sparkle:version>1.0</sparkle:version>", "") << "it has no <sparkle:version>";
        QTest::newRow("malformed version")
            << edit("<sparkle:version>1.0<", "<sparkle:version>1.0-beta<")
            << "“1.0-beta” is not a version";
        QTest::newRow("plain http")
            << edit("https://downloads", "http://downloads") << "must use https";
        QTest::newRow("bad length")
            << edit("length=\"1234567\"", "length=\"big\"") << "length “big” is not a number";
        QTest::newRow("other type") << edit("application/octet-stream", "application/zip")
                                    << "enclosure type is “application/zip”";
        QTest::newRow("bad signature") << edit("sparkle:edSignature=\"", "sparkle:edSignature=\"x")
                                       << "is not an EdDSA signature";
        QTest::newRow("extra attribute") << edit("<enclosure ", "<enclosure sparkle:os=\"macos\" ")
                                         << "its enclosure has the attribute sparkle:os";
        QTest::newRow("bad date") << edit("Mon, 23 Nov 2026", "someday") << "is not a date";
        QTest::newRow("broken after the item") << good + "<item>"
                                               << "not valid XML";
    }

    void readRefusals() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, error);
        const QString message = failure([&] { readItems(xml); });
        QVERIFY2(message.contains(error), qPrintable(message));
    }

    void signatures_data() {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* tag, const QString& given, const QString& expected,
                            const char* error) {
            QTest::newRow(tag) << given << expected << QString(error);
        };
        const QString sig = signature();
        row("bare", sig, sig, "");
        row("padded with space", "  " + sig + "\n", sig, "");
        row("sign_update output", "sparkle:edSignature=\"" + sig + "\" length=\"100\"", sig, "");
        row("sign_update output without length", "sparkle:edSignature=\"" + sig + "\"", sig, "");
        row("other file", "sparkle:edSignature=\"" + sig + "\" length=\"99\"", "",
            "the signature was made for a file of 99 bytes, but this one has 100 bytes");
        row("too short", QString::fromLatin1(QByteArray(32, 's').toBase64()), "",
            "is not an EdDSA signature");
        row("not base64", QString(88, QChar('!')), "", "is not an EdDSA signature");
        row("unpadded", QString(sig).remove('='), "", "is not an EdDSA signature");
        row("empty", "", "", "is not an EdDSA signature");
    }

    void signatures() {
        QFETCH(QString, given);
        QFETCH(QString, expected);
        QFETCH(QString, error);
        QString result;
        const QString message = failure([&] { result = edSignatureFrom(given, 100); });
        QCOMPARE(result, expected);
        QVERIFY2(error.isEmpty() ? message.isEmpty() : message.contains(error),
                 qPrintable(message));
    }

    void minimumSystemVersions_data() {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* tag, const char* given, const char* expected) {
            QTest::newRow(tag) << QString(given) << QString(expected);
        };
        row("major", "12", "12.0.0");
        row("major.minor", "12.0", "12.0.0");
        row("three parts", "13.5.1", "13.5.1");
        row("four parts", "13.5.1.2", "");
        row("trailing dot", "12.", "");
        row("words", "Monterey", "");
        row("empty", "", "");
    }

    void minimumSystemVersions() {
        QFETCH(QString, given);
        QFETCH(QString, expected);
        QString result;
        const QString message = failure([&] { result = normalizedMinimumSystemVersion(given); });
        QCOMPARE(result, expected);
        QCOMPARE(message.isEmpty(), !expected.isEmpty());
    }

    void datesAreWrittenInEnglishAndUtc() {
        const QDateTime date(QDate(2015, 10, 5), QTime(19, 20, 11), Qt::UTC);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(formatPublicationDate(date.toOffsetFromUtc(7200)),
                 QString("Mon, 05 Oct 2015 19:20:11 +0000"));
        QLocale::setDefault(QLocale::c());
    }

    void datesRead_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::newRow("RFC 822") << "Mon, 05 Oct 2015 19:20:11 +0000" << true;
        QTest::newRow("RFC 822 with offset") << "Mon, 05 Oct 2015 21:20:11 +0200" << true;
        QTest::newRow("ISO 8601") << "2015-10-05T19:20:11Z" << true;
        QTest::newRow("ISO 8601 with offset") << "2015-10-05T21:20:11+02:00" << true;
        QTest::newRow("no zone") << "2015-10-05T19:20:11" << false;
        QTest::newRow("words") << "yesterday" << false;
    }
    void datesRead() {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QDateTime read;
        const QString message = failure([&] { read = parsePublicationDate(text); });
        QCOMPARE(read,
                 valid ? QDateTime(QDate(2015, 10, 5), QTime(19, 20, 11), Qt::UTC) : QDateTime());
        QVERIFY2(valid ? message.isEmpty() : message.contains("is not a date"),
                 qPrintable(message));
    }

    void urls() {
        QCOMPARE(httpsUrl("https://example.org/a b.dmg", "URL").toString(QUrl::FullyEncoded),
                 QString("https://example.org/a%20b.dmg"));
        QVERIFY(failure([] { httpsUrl("Paneforge.dmg", "URL"); }).contains("not an absolute URL"));
        QVERIFY(
            failure([] { httpsUrl("ftp://example.org/a.dmg", "URL"); }).contains("must use https"));
    }
};

QTEST_GUILESS_MAIN(AppcastTest)
#include "tst_appcast.moc"
