#include "config_fixtures.h"
#include "core/backup/settings_backup_preview.h"

#include <QTest>

using namespace paneforge;

namespace {

const char* const kDate = "\"2025-03-14T09:26:53Z\"";
const QDateTime kExported(QDate(2025, 3, 14), QTime(9, 26, 53, 750), QTimeZone::utc());

QByteArray backupWith(const QByteArray& version, const QByteArray& date = kDate) {
    QByteArray text =
        SettingsBackupEncoder::encode(PaneforgeConfig::makeDefault(), kExported, "1.2.3");
    text.replace("\"formatVersion\" : 1", "\"formatVersion\" : " + version);
    return text.replace(kDate, date);
}

enum class Outcome { Ok, Decoding, InvalidFormat, UnsupportedVersion };

// What reading a backup gives, and the message of a decoding error.
std::pair<Outcome, QString> outcomeOf(const QByteArray& data) {
    try {
        SettingsBackupRestore::document(data);
        return {Outcome::Ok, {}};
    } catch (const SettingsBackupDecodingError& e) {
        return {Outcome::Decoding, e.message()};
    } catch (const SettingsBackupRestoreException& e) {
        return {e.error() == SettingsBackupRestoreError::InvalidFormat
                    ? Outcome::InvalidFormat
                    : Outcome::UnsupportedVersion,
                {}};
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
        QCOMPARE(document.exportedAt,
                 QDateTime(QDate(2025, 3, 14), QTime(9, 26, 53), QTimeZone::utc()));
        QVERIFY(bytes.contains("\"exportedAt\" : \"2025-03-14T09:26:53Z\",\n  \"format\" : "
                               "\"paneforge-backup\",\n  \"formatVersion\" : 1\n}"));
        QCOMPARE(SettingsBackupEncoder::encode(document), bytes);
    }

    // A wrong format name, a newer version and bytes that are no JSON at all are played through
    // the restore flow in the backup controllers test, each with its own message.
    void threeOutcomesStayApart_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* tag, const QByteArray& data, Outcome outcome,
                            const char* message = "") {
            QTest::newRow(tag) << data << outcome << QString(message);
        };
        row("valid", backupWith("1"), Outcome::Ok);
        row("offset date", backupWith("1", "\"2025-03-14T10:26:53+01:00\""), Outcome::Ok);
        row("version 0", backupWith("0"), Outcome::UnsupportedVersion);
        row("impossible date", backupWith("1", "\"2025-02-30T09:26:53Z\""), Outcome::Decoding);
        // A valid 64-bit integer is a version, however large; the double it rounds to is not.
        row("version 2^63 - 1", backupWith("9223372036854775807"), Outcome::UnsupportedVersion);
        row("version 2^63", backupWith("9223372036854775808"), Outcome::Decoding);
        row("a configuration file", ConfigStore::encodeConfig(PaneforgeConfig::makeDefault()),
            Outcome::Decoding, "missing key at the top level: no value for key \"format\"");
        row("too large", QByteArray(SettingsBackupFormat::maxFileSizeBytes + 1, ' '),
            Outcome::Decoding);
        row("hostile nesting", QByteArray(200000, '{'), Outcome::Decoding);
        // A 16 MB backup of arrays nested 1,000 deep in an ignored key once took 1.3 GB to accept.
        row("deep nesting in an ignored key",
            backupWith("1").insert(1, "\"ignored\":" + QByteArray(1000, '[') +
                                          QByteArray(1000, ']') + ","),
            Outcome::Decoding, "more than 32 levels of nested arrays and objects, at byte 42");
    }
    void threeOutcomesStayApart() {
        QFETCH(QByteArray, data);
        QFETCH(Outcome, outcome);
        QFETCH(QString, message);
        const auto [actual, text] = outcomeOf(data);
        QCOMPARE(actual, outcome);
        QVERIFY2(text.contains(message), qPrintable(text));
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
    }

    void boardGeometry() {
        namespace B = RestorePreviewBoardLayout;
        QCOMPARE(B::panelSize({12, 2}).width, 724.0);
        QCOMPARE(B::panelSize({12, 2}).height, 360.0 + 152.0);
        QCOMPARE(B::sectionMinY(1, {12, 2}), 348.0);
        QCOMPARE(B::cardFrame(7), (B::Rect{280, 128, 132, 100}));
    }
};

QTEST_APPLESS_MAIN(SettingsBackupTest)
#include "tst_settings_backup.moc"
