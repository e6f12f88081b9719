#include "core/config/config_store.h"
#include "core/config/pretty_json.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <sys/file.h>
#include <sys/stat.h>

using namespace paneforge;

namespace {

// The default configuration, as the printer writes it (key order and layout are its rules).
const char* kDefaultFile =
    R"({"cellMarginPoints":8,"displays":{},"hasCompletedQuickStart":false,"hideMenuBarIcon":false,)"
    R"("launchAtLogin":false,"multiSnapModifiers":{"modifiers":768},"restoreWindowSizeOnUnsnap":true,)"
    R"("singleSnapModifiers":{"modifiers":256},"defaultLayout":{"id":"default","name":"Default",)"
    R"("horizontalSplits":[],"verticalSplits":[0.5]}})";

const char* kMinimalFile =
    R"({"displays":{},"defaultLayout":{"id":"d","name":"D","horizontalSplits":[],"verticalSplits":[]},"cellMarginPoints":4})";

QJsonValue parse(const QByteArray& text) {
    const auto document = QJsonDocument::fromJson(text);
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

ConfigStore storeIn(const QString& directory) {
    return ConfigStore(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                       [directory] { return directory; });
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

PaneforgeConfig richConfig() {
    const GridDefinition work(QStringLiteral("W/1"), QStringLiteral("Work / Ärger"), {0.3, 0.7},
                              {0.010000000000000009});
    const GridDefinition focus(QStringLiteral("F"), QStringLiteral("Focus"), {}, {0.5});
    DisplayLayoutsMap displays;
    displays.insert_or_assign(QStringLiteral("v16-p2-s7"),
                              DisplayLayouts(QStringLiteral("F"), {work, focus}));
    displays.insert_or_assign(QStringLiteral("v1-p1-sno-serial"),
                              DisplayLayouts(QStringLiteral("gone"), {}));
    return PaneforgeConfig::makeDefault()
        .copying(displays, std::nullopt, 12.5)
        .withOpenEditorHotkey(HotkeyDefinition{0, 0})
        .withNextLayoutHotkey(HotkeyDefinition{124, 4096 | 2048 | 0x10000})
        .withLaunchAtLogin(true);
}

} // namespace

class ConfigurationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaultConfigurationPrintsByteForByte() {
        QCOMPARE(ConfigStore::encodeConfig(PaneforgeConfig::makeDefault()),
                 PrettyJSON::writeValue(parse(kDefaultFile)).toUtf8());
    }

    void printerRules_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("printed");
        QTest::newRow("solidus escaped") << QByteArray(R"(["a/b"])") << "[\n  \"a\\/b\"\n]";
        QTest::newRow("control characters")
            << QByteArray("[\"\\t\\u0001\\\"\\\\\"]") << "[\n  \"\\t\\u0001\\\"\\\\\"\n]";
        QTest::newRow("unpaired surrogates escaped, pairs kept")
            << QByteArray(R"(["\udc00x\ud83d", "\ud83d\ude00"])")
            << QString::fromUtf8("[\n  \"\\udc00x\\ud83d\",\n  \"😀\"\n]");
        QTest::newRow("numbers") << QByteArray("[8.0, 0.5, 0.010000000000000009, -3, 1e-7]")
                                 << "[\n  8,\n  0.5,\n  0.010000000000000009,\n  -3,\n  1e-07\n]";
        QTest::newRow("code-point key order")
            << QByteArray(R"({"b":1,"B":2,"\ud83d\ude00":3,"\uffff":4})")
            << QString::fromUtf8(
                   "{\n  \"B\" : 2,\n  \"b\" : 1,\n  \"\uffff\" : 4,\n  \"😀\" : 3\n}");
        QTest::newRow("layout order, extra key dropped")
            << QByteArray(
                   R"({"verticalSplits":[],"name":"n","zz":1,"id":"i","horizontalSplits":[]})")
            << "{\n  \"id\" : \"i\",\n  \"name\" : \"n\",\n  \"horizontalSplits\" : [\n\n  ],\n  "
               "\"verticalSplits\" : [\n\n  ]\n}";
    }
    void printerRules() {
        QFETCH(QByteArray, json);
        QFETCH(QString, printed);
        QCOMPARE(PrettyJSON::writeValue(parse(json)), printed);
    }

    void absentStaysAbsent() {
        QByteArray withNull = kMinimalFile;
        withNull.replace("\"cellMarginPoints\":4",
                         "\"cellMarginPoints\":4,\"launchAtLogin\":null,\"nextLayoutHotkey\":null");
        QCOMPARE(ConfigStore::decodeConfig(withNull).toJson().keys(),
                 (QStringList{"cellMarginPoints", "defaultLayout", "displays"}));
    }

    void decodingFailsAndNamesTheKey_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("named");
        QByteArray noMargin = kMinimalFile;
        noMargin.replace(",\"cellMarginPoints\":4", "");
        QTest::newRow("missing cellMarginPoints") << noMargin << "cellMarginPoints";
        auto with = [](const char* extra) -> QByteArray {
            QByteArray text = kMinimalFile;
            text.chop(1);
            return text + "," + extra + "}";
        };
        // Numbers are quoted as the file wrote them, with the real reason.
        QTest::newRow("modifiers above 32 bits")
            << with(R"("singleSnapModifiers":{"modifiers":4294967296})")
            << "singleSnapModifiers.modifiers: 4294967296 is outside the range 0 to 4294967295";
        QTest::newRow("fractional key code")
            << with(R"("moveToNextDisplayHotkey":{"keyCode":1.5,"modifiers":0})")
            << "keyCode: 1.5 is not a whole number";
        QTest::newRow("bad split in a display's layout")
            << with(R"("displays":{"v1/x":{"activeLayoutId":"a","layouts":[{"id":"a","name":"A",)"
                    R"("horizontalSplits":[0.5,"x"],"verticalSplits":[]}]}})")
            << R"(displays["v1/x"].layouts[0].horizontalSplits[1])";
        QTest::newRow("empty file") << QByteArray() << "JSON";
        // Refused before the parser builds a tree for them: a tree of these takes gigabytes.
        QTest::newRow("deep nesting")
            << QByteArray("{\"x\":\n") + QByteArray(100000, '[')
            << "more than 32 levels of nested arrays and objects, at line 2, column 32)";
        QTest::newRow("brackets in strings do not nest")
            << QByteArray(kMinimalFile)
                   .replace("\"cellMarginPoints\":4", "\"cellMarginPoints\":true,\"note\":\"" +
                                                          QByteArray(40, '[') + "\\\"" +
                                                          QByteArray(40, '{') + "\"")
            << "cellMarginPoints: expected a number but found a boolean";
        QTest::newRow("many small arrays") << "{\"x\":[" + QByteArray("[],").repeated(300000)
                                           << "more than 262144 arrays and objects";
        QTest::newRow("too large")
            << QByteArray(ConfigStore::maxFileSizeBytes + 1, ' ') << "more than 16 MB";
    }
    void decodingFailsAndNamesTheKey() {
        QFETCH(QByteArray, json);
        QFETCH(QString, named);
        try {
            ConfigStore::decodeConfig(json);
            QFAIL("decoding should fail");
        } catch (const ConfigStoreError& error) {
            QCOMPARE(error.kind(), ConfigStoreError::Kind::Decode);
            QVERIFY2(error.message().contains(named), qPrintable(error.message()));
        }
    }

    void storeRoundTripsAndNeverRepairs() {
        QTemporaryDir home;
        const ConfigStore store = storeIn(home.filePath(QStringLiteral("support")));
        const QString path = home.filePath(QStringLiteral("support/Paneforge/config.json"));

        QVERIFY(store.loadConfig() == PaneforgeConfig::makeDefault());
        store.saveConfig(richConfig());
        QVERIFY(store.loadConfig() == richConfig());
        const QByteArray bytes = readFile(path);
        // A save replaces the file but keeps its permissions.
        QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        const auto ownerOnly = QFile::permissions(path);
        store.saveConfig(store.loadConfig());
        QCOMPARE(QFile::permissions(path), ownerOnly);
        QCOMPARE(readFile(path), bytes);

        // A hand edit of the same size within the same second is seen at the next load: the
        // store compares the bytes themselves, not the file's size or time.
        const QDateTime modified = QFileInfo(path).lastModified();
        QFile hand(path);
        QVERIFY(hand.open(QIODevice::ReadWrite));
        QCOMPARE(hand.write(QByteArray(bytes).replace("12.5", "13.5")), bytes.size());
        QVERIFY(hand.flush());
        QVERIFY(hand.setFileTime(modified, QFileDevice::FileModificationTime));
        hand.close();
        QCOMPARE(QFileInfo(path).lastModified(), modified);
        QCOMPARE(store.loadConfig().cellMarginPoints(), 13.5);

        QVERIFY(hand.open(QIODevice::WriteOnly | QIODevice::Truncate));
        hand.write("{}");
        hand.close();
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, store.loadConfig());
        QCOMPARE(readFile(path), QByteArray("{}"));
    }

    // Only regular files are read, and no more than the cap: a named pipe would block the reader
    // for good, a device would stream without end. A save replaces only a regular file (or
    // writes a new one); the device is never tried: a writer getting that wrong, run as root,
    // would replace the system's own device.
    void specialFilesAtThePath_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("save");
        const auto row = [](const char* kind, const char* reason, const char* save) {
            QTest::newRow(kind) << QString(kind) << QString(reason) << QString(save);
        };
        row("folder", "it is a folder, not a regular file", "refused");
        row("fifo", "it is a named pipe, not a regular file", "refused");
        row("device", "it is a device, not a regular file", "untried");
        row("oversized", "it is larger than 16 MB", "replaces");
    }
    void specialFilesAtThePath() {
        QFETCH(QString, kind);
        QFETCH(QString, reason);
        QFETCH(QString, save);
        QTemporaryDir home;
        const ConfigStore store = storeIn(home.path());
        const QString path = home.filePath(QStringLiteral("Paneforge/config.json"));
        QVERIFY(QDir().mkpath(home.filePath(QStringLiteral("Paneforge"))));
        if (kind == "folder") {
            QVERIFY(QDir().mkpath(path));
        } else if (kind == "fifo") {
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        } else if (kind == "device") {
            QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path));
        } else {
            QFile file(path); // sparse: nothing is written
            QVERIFY(file.open(QIODevice::WriteOnly) &&
                    file.resize(ConfigStore::maxFileSizeBytes + 1));
        }
        try {
            store.loadConfig();
            QFAIL("only a regular file within the cap is a configuration");
        } catch (const ConfigStoreError& error) {
            QCOMPARE(error.kind(), ConfigStoreError::Kind::Read);
            QVERIFY2(error.message().endsWith(reason + "."), qPrintable(error.message()));
        }
        if (save == "replaces") {
            store.saveConfig(richConfig());
            QVERIFY(store.loadConfig() == richConfig());
        } else if (save == "refused") {
            QVERIFY_THROWS_EXCEPTION(ConfigStoreError, store.saveConfig(richConfig()));
            QVERIFY(!QFileInfo(path).isFile());
        }
    }

    // A save removes what killed saves left behind, and nothing else: a live writer holds a lock
    // on its file, and one that has only just created it (where it cannot be created locked)
    // has not written anything yet.
    void leftoversOfKilledSavesAreRemoved_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<bool>("fresh"); // empty and just made
        QTest::addColumn<bool>("kept");
        const QString temporary = ".config.json.saving-Ab3dE9";
        QTest::newRow("killed writer's") << temporary << false << false << false;
        QTest::newRow("live writer's") << temporary << true << false << true;
        QTest::newRow("just created") << temporary << false << true << true;
        QTest::newRow("the user's copy") << "config.json.backup" << false << false << true;
        QTest::newRow("longer name") << temporary + "7" << false << false << true;
    }
    void leftoversOfKilledSavesAreRemoved() {
        QFETCH(QString, name);
        QFETCH(bool, locked);
        QFETCH(bool, fresh);
        QFETCH(bool, kept);
        QTemporaryDir home;
        const ConfigStore store = storeIn(home.path());
        QVERIFY(QDir().mkpath(home.filePath("Paneforge")));
        QFile leftover(home.filePath("Paneforge/" + name));
        QVERIFY(leftover.open(QIODevice::ReadWrite) && leftover.write(fresh ? "" : "{") >= 0 &&
                leftover.flush());
        QVERIFY(leftover.setFileTime(QDateTime::currentDateTime().addSecs(fresh ? 0 : -60),
                                     QFileDevice::FileModificationTime));
        if (locked) {
            QCOMPARE(::flock(leftover.handle(), LOCK_EX), 0);
        } else {
            leftover.close();
        }
        store.saveConfig(richConfig());
        QCOMPARE(QFile::exists(leftover.fileName()), kept);
        QVERIFY(store.loadConfig() == richConfig());
    }

    void noDirectoryAvailable() {
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, storeIn(QString()).loadConfig());
    }
};

QTEST_APPLESS_MAIN(ConfigurationTest)
#include "tst_configuration.moc"
