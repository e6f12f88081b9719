#include "platform/macos/mac_display_service.h"

#include <QTest>
#include <map>

using namespace paneforge;

namespace {

// The display calls as the tests set them up, and the service over them.
class FakeDisplays final : public DisplayApi {
public:
    std::int32_t countError = 0;
    std::int32_t listError = 0;
    std::vector<std::uint32_t> active;
    struct Display {
        std::uint32_t vendor, model, serial;
        DesktopRect bounds;
        bool builtIn;
    };
    std::map<std::uint32_t, Display> displays;
    std::vector<PlatformScreen> screenList;
    std::optional<std::vector<RegistryDisplay>> registry = std::vector<RegistryDisplay>{};
    std::map<std::uint64_t, LocalizedNames> names;
    QString locale = "en_US";

    std::pair<std::int32_t, std::uint32_t> activeDisplayCount() override {
        return {countError, countError ? 0u : static_cast<std::uint32_t>(active.size())};
    }
    std::pair<std::int32_t, std::vector<std::uint32_t>>
    activeDisplayList(std::uint32_t capacity) override {
        std::vector<std::uint32_t> ids(active.begin(),
                                       active.begin() + std::min<size_t>(capacity, active.size()));
        return {listError, listError ? std::vector<std::uint32_t>{} : ids};
    }
    std::uint32_t vendorNumber(std::uint32_t id) override { return displays.at(id).vendor; }
    std::uint32_t modelNumber(std::uint32_t id) override { return displays.at(id).model; }
    std::uint32_t serialNumber(std::uint32_t id) override { return displays.at(id).serial; }
    DesktopRect bounds(std::uint32_t id) override { return displays.at(id).bounds; }
    bool isBuiltin(std::uint32_t id) override { return displays.at(id).builtIn; }
    std::vector<PlatformScreen> screens() override { return screenList; }
    std::optional<std::vector<RegistryDisplay>> registryDisplays() override { return registry; }
    std::optional<LocalizedNames> productNames(std::uint64_t handle) override {
        const auto it = names.find(handle);
        return it == names.end() ? std::nullopt : std::optional(it->second);
    }
    QString currentLocaleIdentifier() override { return locale; }
    DesktopPoint mouseLocation() override { return {}; }

    MacDisplayService service{*this, LoggerFactory::makeLogger("DisplayService")};
};

} // namespace

class MacDisplayServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void activeDisplaysAndErrors() {
        FakeDisplays api;
        api.active = {69733382, 2};
        QCOMPARE(api.service.getActiveDisplays(), (std::vector<DisplayId>{69733382, 2}));
        api.countError = 1001;
        QTest::ignoreMessage(QtCriticalMsg, "Failed to get display count: 1001");
        QVERIFY(api.service.getActiveDisplays().empty());
    }

    void screensAndPoints() {
        FakeDisplays api;
        QVERIFY(!api.service.getDisplayId({0, 0}) && !api.service.getFrame(1) &&
                !api.service.getVisibleFrame(1));
        QCOMPARE(api.service.primaryMaxY(), 0.0);
        api.screenList = {
            {1u, {0, 0, 1440, 900}, {0, 0, 1440, 875}, QString("Built-in Retina Display")},
            {std::nullopt, {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}, std::nullopt},
            {7u, {-1920, 0, 1920, 1080}, {-1920, 0, 1920, 1055}, std::nullopt}};
        QCOMPARE(api.service.getDisplayId({0, 0}), std::optional<DisplayId>(1));
        QCOMPARE(api.service.getDisplayId({1440, 10}), std::nullopt); // its screen has no number
        QCOMPARE(api.service.getDisplayId({-1, 899}), std::optional<DisplayId>(7));
        QCOMPARE(api.service.getDisplayId({100, 900}), std::nullopt); // the top edge is outside
        QCOMPARE(*api.service.getVisibleFrame(7), DesktopRect(-1920, 0, 1920, 1055));
        QCOMPARE(api.service.primaryMaxY(), 900.0);

        api.displays[1] = {610, 41000, 0, {0, 0, 1440, 900}, true};
        api.displays[7] = {1552, 1, 0, {-1920, 180, 1920, 1080}, false};
        api.screenList[0].backingScaleFactor = 2.0;
        const auto listed = api.service.screens();
        QCOMPARE(listed.size(), size_t(3));
        QCOMPARE(listed[0].name, QStringLiteral("Built-in Retina Display"));
        QCOMPARE(listed[0].scale, 2.0);
        QCOMPARE(listed[0].topLeftBounds, DesktopRect(0, 0, 1440, 900));
        QVERIFY(!listed[1].displayId);
    }

    void localePicks_data() {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QString>("expected"); // empty: none
        QTest::newRow("language wins")
            << "de_DE" << QStringList{"en_US", "de", "de_DE"} << "name-de";
        QTest::newRow("whole locale next")
            << "de_DE" << QStringList{"en_US", "de_DE"} << "name-de_DE";
        QTest::newRow("no arbitrary fallback") << "de_DE" << QStringList{"en_US"} << "";
        QTest::newRow("no language: first entry") << "_" << QStringList{"fr", "en_US"} << "name-fr";
        QTest::newRow("empty identifier, no names") << "" << QStringList{} << "";
    }
    void localePicks() {
        QFETCH(QString, locale);
        QFETCH(QStringList, keys);
        QFETCH(QString, expected);
        LocalizedNames names;
        for (const auto& key : keys) {
            names.emplace_back(key, "name-" + key);
        }
        const auto picked = MacDisplayService::pickLocalizedName(names, locale);
        QCOMPARE(picked.value_or(QString()), expected);
    }

    void titlesAndRegistryNames() {
        FakeDisplays api;
        api.locale = "de_DE";
        api.active = {5, 6};
        api.displays[5] = {1552, 41234, 0, {-1920, 0, 1920, 1080}, false};
        api.displays[6] = {1552, 40000, 99, {0, 0, 2560.7, 1440.2}, true};
        api.registry = std::vector<RegistryDisplay>{{10, 1552, 41234, std::nullopt},
                                                    {11, 1552, 41234, 3},
                                                    {12, 1552, 40000, 98},
                                                    {13, 1552, 40000, 99}};
        api.names[10] = {{"en_US", "DELL P2419H"}, {"de", "DELL P2419H (de)"}};
        api.names[13] = {{"en_US", "Studio Display"}};

        // Serial-less: the first entry of its vendor and product wins, and the title gets its
        // origin.
        QCOMPARE(
            api.service.getDisplayTitle(5),
            QStringLiteral(
                "DELL P2419H (de) [External] (v1552-p41234-sno-serial) @ 1920x1080 @ -1920,0"));
        // de_DE with only an en_US name: no registry name, the stable id stands in.
        QCOMPARE(api.service.getDisplayTitle(6),
                 QStringLiteral("v1552-p40000-s99 [Built-in] (v1552-p40000-s99) @ 2560x1440"));
        // AppKit's own name comes first.
        api.screenList = {{6u, {0, 0, 2560, 1440}, {0, 0, 2560, 1415}, QString("Studio")}};
        QCOMPARE(api.service.getDisplayName(6), std::optional<QString>("Studio"));
        QCOMPARE(api.service.getDisplaySummaries(),
                 (std::vector<QString>{"v1552-p41234-sno-serial @ 1920x1080",
                                       "v1552-p40000-s99 @ 2560x1440"}));
        api.registry = std::nullopt;
        QCOMPARE(api.service.getDisplayName(5), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(MacDisplayServiceTest)
#include "tst_mac_display_service.moc"
