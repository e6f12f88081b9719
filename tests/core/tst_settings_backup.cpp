#include "config_fixtures.h"
#include "core/backup/settings_backup_preview.h"

#include <QTest>

using namespace paneforge;

namespace {

const char* const kBackup = "\"paneforge-backup\"";
const char* const kDate = "\"2025-03-14T09:26:53Z\"";
const QDateTime kExported(QDate(2025, 3, 14), QTime(9, 26, 53, 750), QTimeZone::utc());

QByteArray backupWith(const QByteArray& format, const QByteArray& version, const QByteArray& date) {
    QByteArray text =
        SettingsBackupEncoder::encode(PaneforgeConfig::makeDefault(), kExported, "1.2.3");
    text.replace("\"paneforge-backup\"", format);
    text.replace("\"formatVersion\" : 1", "\"formatVersion\" : " + version);
    text.replace("\"2025-03-14T09:26:53Z\"", date);
    return text;
}

enum class Outcome { Ok, Decoding, InvalidFormat, UnsupportedVersion };

Outcome outcomeOf(const QByteArray& data) {
    try {
        SettingsBackupRestore::document(data);
        return Outcome::Ok;
    } catch (const SettingsBackupDecodingError&) {
        return Outcome::Decoding;
    } catch (const SettingsBackupRestoreException& e) {
        return e.error() == SettingsBackupRestoreError::InvalidFormat ? Outcome::InvalidFormat
                                                                      : Outcome::UnsupportedVersion;
    }
}

GridDefinition named(const QString& id, const QString& name) {
    return GridDefinition(id, name, {0.5}, {});
}

} // namespace

Q_DECLARE_METATYPE(Outcome)

class SettingsBackupTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundTripLosesOnlyTheFraction() {
        const auto config = fixtures::smallConfig();
        const QByteArray bytes = SettingsBackupEncoder::encode(config, kExported, "1.2.3");
        const auto document = SettingsBackupRestore::document(bytes);
        QVERIFY(document.config == config);
        QCOMPARE(document.appVersion, QStringLiteral("1.2.3"));
        QCOMPARE(document.exportedAt,
                 QDateTime(QDate(2025, 3, 14), QTime(9, 26, 53), QTimeZone::utc()));
        QVERIFY(bytes.startsWith("{\n  \"appVersion\" : \"1.2.3\",\n  \"config\" : {"));
        QVERIFY(bytes.contains("\"exportedAt\" : \"2025-03-14T09:26:53Z\",\n  \"format\" : "
                               "\"paneforge-backup\",\n  \"formatVersion\" : 1\n}"));
        QCOMPARE(SettingsBackupEncoder::encode(document), bytes);
    }

    // A wrong format name, a newer version and bytes that are no JSON at all are played through
    // the restore flow in the backup controllers test, each with its own message.
    void threeOutcomesStayApart_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<Outcome>("outcome");
        const auto row = [](const char* tag, const char* format, const char* version,
                            const char* date, Outcome outcome) {
            QTest::newRow(tag) << backupWith(format, version, date) << outcome;
        };
        row("valid", kBackup, "1", kDate, Outcome::Ok);
        row("offset date", kBackup, "1", "\"2025-03-14T10:26:53+01:00\"", Outcome::Ok);
        row("version 0", kBackup, "0", kDate, Outcome::UnsupportedVersion);
        row("fractional seconds", kBackup, "1", "\"2025-03-14T09:26:53.5Z\"", Outcome::Decoding);
        row("impossible date", kBackup, "1", "\"2025-02-30T09:26:53Z\"", Outcome::Decoding);
        row("version as text", kBackup, "\"1\"", kDate, Outcome::Decoding);
        // A valid 64-bit integer is a version, however large; the double it rounds to is not.
        row("version 2^63 - 1", kBackup, "9223372036854775807", kDate, Outcome::UnsupportedVersion);
        row("version 2^63", kBackup, "9223372036854775808", kDate, Outcome::Decoding);
        QTest::newRow("truncated")
            << backupWith(kBackup, "1", kDate).left(200) << Outcome::Decoding;
        QTest::newRow("too large")
            << QByteArray(SettingsBackupFormat::maxFileSizeBytes + 1, ' ') << Outcome::Decoding;
        QTest::newRow("hostile nesting") << QByteArray(200000, '{') << Outcome::Decoding;
    }
    void threeOutcomesStayApart() {
        QFETCH(QByteArray, data);
        QFETCH(Outcome, outcome);
        QCOMPARE(outcomeOf(data), outcome);
    }

    void decodingErrorsNameTheProblem_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("message");
        QTest::newRow("a configuration file")
            << ConfigStore::encodeConfig(PaneforgeConfig::makeDefault())
            << "missing key at the top level: no value for key \"format\"";
        QTest::newRow("nearly whole version") << backupWith(kBackup, "1.0000001", kDate)
                                              << "formatVersion: 1.0000001 is not a whole number";
        QTest::newRow("version beyond 64 bits")
            << backupWith(kBackup, "1e19", kDate)
            << "formatVersion: 10000000000000000000 does not fit in a 64-bit integer";
        // A 16 MB backup of arrays nested 1,000 deep in an ignored key once took 1.3 GB to accept.
        QByteArray deep = backupWith(kBackup, "1", kDate);
        deep.insert(1, "\"ignored\":" + QByteArray(1000, '[') + QByteArray(1000, ']') + ",");
        QTest::newRow("deep nesting in an ignored key")
            << deep << "more than 32 levels of nested arrays and objects, at byte 42";
    }
    void decodingErrorsNameTheProblem() {
        QFETCH(QByteArray, data);
        QFETCH(QString, message);
        try {
            SettingsBackupRestore::document(data);
            QFAIL("not a backup document");
        } catch (const SettingsBackupDecodingError& error) {
            QVERIFY2(error.message().contains(message), qPrintable(error.message()));
        }
    }

    void suggestedFileNameUsesTheLocalDate() {
        const QDateTime lateUtc(QDate(2025, 3, 14), QTime(23, 30), QTimeZone::utc());
        QCOMPARE(SettingsBackupFilename::suggested(lateUtc, QTimeZone("Europe/Berlin")),
                 QStringLiteral("Paneforge-backup-2025-03-15.json"));
    }

    void exportDateInTheUsersLocale_data() {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("expected");
        QTest::newRow("English (US)") << "en_US"
                                      << "Mar 14, 2025, 9:26 AM";
        QTest::newRow("German") << "de_DE"
                                << "14. März 2025, 09:26";
        QTest::newRow("C, whose short time has seconds") << "C"
                                                         << "14 Mar 2025, 09:26";
    }

    void exportDateInTheUsersLocale() {
        QFETCH(QString, locale);
        QFETCH(QString, expected);
        const QDateTime local(QDate(2025, 3, 14), QTime(9, 26, 53));
        QString text = SettingsBackupPreviewBuilder::mediumDateShortTime(local, QLocale(locale));
        text.replace(QChar(0x202F), QLatin1Char(' ')); // newer locale data: a narrow space
        QCOMPARE(text, expected);
    }

    void previewTexts() {
        const auto fixed = [](const QDateTime&) { return QStringLiteral("14 Mar 2025, 10:26"); };
        const auto empty =
            SettingsBackupPreviewBuilder::preview(SettingsBackupEncoder::makeDocument(
                PaneforgeConfig::makeDefault(), kExported, "1.2.3"));
        const auto sections = SettingsBackupPreviewBuilder::sections(empty);
        QCOMPARE(sections.size(), size_t(1));
        QCOMPARE(sections[0].title, QStringLiteral("Default"));
        QCOMPARE(
            SettingsBackupPreviewBuilder::informativeText(empty, fixed),
            QStringLiteral(
                "This replaces your current layouts and preferences with the selected backup.\n"
                "Version: 1.2.3\nExported: 14 Mar 2025, 10:26\nDefault: Default"));

        DisplayLayoutsMap displays;
        displays.insert_or_assign("v2-p1-s1",
                                  DisplayLayouts("b", {named("b", "Code"), named("c", "Web")}));
        displays.insert_or_assign("v1-p1-s1", DisplayLayouts("a", {named("a", "   ")}));
        const auto two = SettingsBackupPreviewBuilder::preview(SettingsBackupEncoder::makeDocument(
            PaneforgeConfig::makeDefault().copying(displays), kExported, "1.2.3"));
        QCOMPARE(SettingsBackupPreviewBuilder::sections(two)[1].title, QStringLiteral("Display 2"));
        QVERIFY(SettingsBackupPreviewBuilder::informativeText(two, fixed)
                    .endsWith("\nDisplay 1: Untitled\nDisplay 2: Code, Web"));
        QCOMPARE(SettingsBackupPreviewBuilder::headerText(two, fixed).count('\n'), 2);
    }

    void boardGeometry() {
        namespace B = RestorePreviewBoardLayout;
        QCOMPARE(B::sectionHeight(0), 120.0);
        QCOMPARE(B::rowCount(0), 0);
        QCOMPARE(B::cardsPerRow(0), 1);
        QCOMPARE(B::panelSize({12, 2}).width, 724.0);
        QCOMPARE(B::boardWidth({}), 132.0);
        QCOMPARE(B::panelSize({1}).width, 452.0);
        QCOMPARE(B::boardHeight({12, 2}), 336.0 + 12.0 + 120.0);
        QCOMPARE(B::panelSize({12, 2}).height, 360.0 + 152.0);
        QCOMPARE(B::panelSize({2}).height, 120.0 + 152.0);
        QCOMPARE(B::sectionMinY(0, {12, 2}), 0.0);
        QCOMPARE(B::sectionMinY(1, {12, 2}), 348.0);
        QCOMPARE(B::cardFrame(7), (B::Rect{280, 128, 132, 100}));
    }
};

QTEST_APPLESS_MAIN(SettingsBackupTest)
#include "tst_settings_backup.moc"
