#include "core/config/config_store.h"
#include "core/config/pretty_json.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

const char* kDefaultFile = R"({
  "cellMarginPoints" : 8,
  "defaultLayout" : {
    "id" : "default",
    "name" : "Default",
    "horizontalSplits" : [

    ],
    "verticalSplits" : [
      0.5
    ]
  },
  "displays" : {

  },
  "hasCompletedQuickStart" : false,
  "hideMenuBarIcon" : false,
  "launchAtLogin" : false,
  "multiSnapModifiers" : {
    "modifiers" : 768
  },
  "restoreWindowSizeOnUnsnap" : true,
  "singleSnapModifiers" : {
    "modifiers" : 256
  }
})";

const char* kMinimalFile =
    R"({"displays":{},"defaultLayout":{"id":"d","name":"D","horizontalSplits":[],"verticalSplits":[]},"cellMarginPoints":4})";

QJsonValue parse(const QByteArray& text) {
    const auto document = QJsonDocument::fromJson(text);
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
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
                 QByteArray(kDefaultFile));
    }

    void printerRules_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("printed");
        QTest::newRow("solidus escaped") << QByteArray(R"(["a/b"])") << "[\n  \"a\\/b\"\n]";
        QTest::newRow("control characters")
            << QByteArray("[\"\\t\\u0001\\\"\\\\\"]") << "[\n  \"\\t\\u0001\\\"\\\\\"\n]";
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
        QTest::newRow("three layout keys sort normally")
            << QByteArray(R"({"name":"n","id":"i","verticalSplits":null})")
            << "{\n  \"id\" : \"i\",\n  \"name\" : \"n\",\n  \"verticalSplits\" : null\n}";
        QTest::newRow("nested empty object")
            << QByteArray(R"({"a":{"b":{}}})") << "{\n  \"a\" : {\n    \"b\" : {\n\n    }\n  }\n}";
    }
    void printerRules() {
        QFETCH(QByteArray, json);
        QFETCH(QString, printed);
        QCOMPARE(PrettyJSON::writeValue(parse(json)), printed);
    }

    void absentStaysAbsent() {
        const auto minimal = ConfigStore::decodeConfig(kMinimalFile);
        QVERIFY(!minimal.singleSnapModifiers() && !minimal.launchAtLogin() &&
                !minimal.openEditorHotkey());
        QCOMPARE(minimal.toJson().keys(),
                 (QStringList{"cellMarginPoints", "defaultLayout", "displays"}));

        QByteArray withNull = kMinimalFile;
        withNull.replace("\"cellMarginPoints\":4",
                         "\"cellMarginPoints\":4,\"launchAtLogin\":null,\"nextLayoutHotkey\":null");
        const auto nulls = ConfigStore::decodeConfig(withNull);
        QVERIFY(!nulls.launchAtLogin() && !nulls.nextLayoutHotkey());
        QVERIFY(!nulls.toJson().contains(QStringLiteral("launchAtLogin")));
    }

    void withOperationsReplaceOneField() {
        const auto original = richConfig();
        const auto cleared = original.withOpenEditorHotkey(std::nullopt);
        QVERIFY(original.openEditorHotkey().has_value());
        QVERIFY(!cleared.toJson().contains(QStringLiteral("openEditorHotkey")));
        QVERIFY(cleared.withOpenEditorHotkey(HotkeyDefinition{0, 0}) == original);
        QCOMPARE(original.withCellMarginPoints(-4).cellMarginPoints(), -4.0);
        QVERIFY(original.copying(std::nullopt) == original);
        QCOMPARE(original.withRestoreWindowSizeOnUnsnap(false).toJson().value(
                     "restoreWindowSizeOnUnsnap"),
                 QJsonValue(false));
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
        QTest::newRow("hotkey without keyCode")
            << with(R"("openEditorHotkey":{"modifiers":256})") << "keyCode";
        QTest::newRow("modifiers above 32 bits")
            << with(R"("singleSnapModifiers":{"modifiers":4294967296})")
            << "singleSnapModifiers.modifiers";
        QTest::newRow("fractional key code")
            << with(R"("moveToNextDisplayHotkey":{"keyCode":1.5,"modifiers":0})") << "keyCode";
        QTest::newRow("string for boolean")
            << with(R"("hideMenuBarIcon":"yes")") << "hideMenuBarIcon";
        QTest::newRow("bad layout in a display")
            << with(R"("displays":{"v1/x":{"activeLayoutId":"a","layouts":[{"id":"a"}]}})")
            << R"(displays["v1/x"].layouts[0])";
        QTest::newRow("empty object") << QByteArray("{}") << "displays";
        QTest::newRow("array at the top") << QByteArray("[]") << "object";
        QTest::newRow("empty file") << QByteArray() << "JSON";
        QTest::newRow("truncated") << QByteArray(kMinimalFile).left(40) << "line 1";
        QTest::newRow("invalid UTF-8") << QByteArray("{\"displays\":\"\xff\xfe\"}") << "JSON";
        QTest::newRow("deep nesting") << QByteArray(100000, '[') << "JSON";
        QTest::newRow("huge number") << with(R"("cellMarginPoints":1e999)") << "JSON";
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
        const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                                [&] { return home.filePath(QStringLiteral("support")); });
        const QString path = home.filePath(QStringLiteral("support/Paneforge/config.json"));

        QVERIFY(store.loadConfig() == PaneforgeConfig::makeDefault());
        QVERIFY(QDir(home.filePath(QStringLiteral("support/Paneforge"))).exists());
        QVERIFY(!QFile::exists(path));

        store.saveConfig(richConfig());
        QVERIFY(store.loadConfig() == richConfig());
        QFile first(path);
        QVERIFY(first.open(QIODevice::ReadOnly));
        const QByteArray bytes = first.readAll();
        first.close();
        QVERIFY(bytes.contains(R"("W\/1")"));
        store.saveConfig(store.loadConfig());
        QVERIFY(first.open(QIODevice::ReadOnly));
        QCOMPARE(first.readAll(), bytes);
        first.close();

        QFile corrupt(path);
        QVERIFY(corrupt.open(QIODevice::WriteOnly | QIODevice::Truncate));
        corrupt.write("{}");
        corrupt.close();
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, store.loadConfig());
        QVERIFY(corrupt.open(QIODevice::ReadOnly));
        QCOMPARE(corrupt.readAll(), QByteArray("{}"));
    }

    void directoryInPlaceOfTheFile() {
        QTemporaryDir home;
        const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                                [&] { return home.path(); });
        QVERIFY(QDir().mkpath(home.filePath(QStringLiteral("Paneforge/config.json"))));
        try {
            store.loadConfig();
            QFAIL("a folder is not a configuration");
        } catch (const ConfigStoreError& error) {
            QCOMPARE(error.kind(), ConfigStoreError::Kind::Read);
        }
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError,
                                 store.saveConfig(PaneforgeConfig::makeDefault()));
    }

    void noDirectoryAvailable() {
        const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                                [] { return QString(); });
        QVERIFY_THROWS_EXCEPTION(ConfigStoreError, store.loadConfig());
    }
};

QTEST_APPLESS_MAIN(ConfigurationTest)
#include "tst_configuration.moc"
