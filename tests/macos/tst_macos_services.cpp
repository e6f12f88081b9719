// The portable macOS services over fakes of the Apple calls: the accessibility service finding the
// window under the pointer and moving it, and the display service's displays, screens and names.

#include "platform/macos/accessibility_service.h"
#include "platform/macos/mac_display_service.h"

#include <QTest>
#include <map>

using namespace paneforge;

namespace {

struct FakeElement final : AccessibilityElement {
    std::map<QString, AXValue> attributes;
    std::int32_t pid = 0;
};
using Fake = std::shared_ptr<FakeElement>;

// An element tree the tests build by hand, and the service over it. Writes of "AXPosition" can be
// made to land off by a few points, as an application that moves its window again would.
class FakeAccessibility final : public AccessibilityApi {
public:
    bool focusedApplicationReadable = false;
    double maxY = 1080;
    Fake hit;
    std::map<std::int32_t, Fake> applications;
    double positionDrift = 0;
    int positionWrites = 0;
    Fake systemWide = std::make_shared<FakeElement>();

    bool isProcessTrusted(bool) override { return false; }
    AXElementRef systemWideElement() override { return systemWide; }
    AXResult elementAtPosition(float, float) override { return {ax_error::kSuccess, hit}; }
    AXResult copyAttribute(const AXElementRef& element, const QString& name) override {
        if (element == systemWide && name == "AXFocusedApplication") {
            return {focusedApplicationReadable ? ax_error::kSuccess : ax_error::kNoValue,
                    AXOther{}};
        }
        const auto* fake = dynamic_cast<const FakeElement*>(element.get());
        return fake && fake->attributes.contains(name)
                   ? AXResult{ax_error::kSuccess, fake->attributes.at(name)}
                   : AXResult{ax_error::kNoValue, std::monostate{}};
    }
    std::int32_t setAttribute(const AXElementRef& element, const QString& name,
                              const AXValue& value) override {
        auto* fake = const_cast<FakeElement*>(dynamic_cast<const FakeElement*>(element.get()));
        fake->attributes[name] = value;
        // The first writes land off; the third one sticks.
        if (name == "AXPosition" && ++positionWrites < 3) {
            const auto p = std::get<DesktopPoint>(value);
            fake->attributes[name] = DesktopPoint{p.x + positionDrift, p.y};
        }
        return ax_error::kSuccess;
    }
    std::int32_t processId(const AXElementRef& element) override {
        const auto* fake = dynamic_cast<const FakeElement*>(element.get());
        return fake ? fake->pid : 0;
    }
    AXElementRef applicationElement(std::int32_t pid) override {
        const auto it = applications.find(pid);
        return it == applications.end() ? nullptr : it->second;
    }
    bool equal(const AXElementRef& a, const AXElementRef& b) override { return a == b; }
    void systemLog(const QString&) override {}
    double primaryMaxY() override { return maxY; }

    QStringList log;
    AccessibilityService service{*this, [this](const QString& line) { log << line; }};
};

Fake element(const QString& role, std::int32_t pid = 42) {
    auto e = std::make_shared<FakeElement>();
    e->attributes["AXRole"] = role;
    e->pid = pid;
    return e;
}

// A window with its frame given in accessibility space.
Fake window(double x, double y, double w, double h) {
    auto e = element("AXWindow");
    e->attributes["AXPosition"] = DesktopPoint{x, y};
    e->attributes["AXSize"] = DesktopSize{w, h};
    return e;
}

// `depth` plain elements below `top`; returns the deepest.
Fake chainBelow(const Fake& top, int depth) {
    Fake current = top;
    for (int i = 0; i < depth; ++i) {
        auto child = element("AXGroup");
        child->attributes["AXParent"] = AXElementRef(current);
        current = child;
    }
    return current;
}

// The display calls as the tests set them up, and the service over them.
class FakeDisplays final : public DisplayApi {
public:
    std::int32_t countError = 0;
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
        return {0, {active.begin(), active.begin() + std::min<size_t>(capacity, active.size())}};
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

class MacosServicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roleWalkIsBoundedToTenElements() {
        // The window itself, a button nine levels below it, and one ten levels below.
        for (const int depth : {0, 9, 10}) {
            FakeAccessibility api;
            const auto target = window(0, 0, 500, 500);
            api.hit = chainBelow(target, depth);
            QCOMPARE(api.service.getWindowUnderCursor({100, 900}),
                     depth < 10 ? AXElementRef(target) : AXElementRef());
        }
    }

    void windowAttributeWalkComesSecond() {
        FakeAccessibility api;
        const auto target = window(0, 0, 10, 10);
        auto leaf = chainBelow(element("AXGroup"), 3);
        leaf->attributes["AXWindow"] = AXElementRef(target);
        api.hit = leaf;
        QCOMPARE(api.service.getWindowUnderCursor({1, 1}), AXElementRef(target));
    }

    void applicationFallbackOrder() {
        FakeAccessibility api;
        auto app = element("AXApplication");
        api.applications[42] = app;
        api.hit = element("AXStaticText"); // no parent, no AXWindow: both walks fail
        const auto first = window(0, 0, 800, 600);
        const auto second = window(100, 100, 800, 600);
        const auto focused = window(1500, 0, 300, 300);
        app->attributes["AXWindows"] = std::vector<AXElementRef>{nullptr, first, second, focused};
        app->attributes["AXFocusedWindow"] = AXElementRef(focused);

        // Desktop (200, 800) is accessibility (200, 280): inside both; the first in order wins.
        QCOMPARE(api.service.getWindowUnderCursor({200, 800}), AXElementRef(first));
        // Nowhere near any window: the focused one, even though it lies elsewhere.
        QCOMPARE(api.service.getWindowUnderCursor({1000, 100}), AXElementRef(focused));
        // A focused window missing from AXWindows is still returned.
        const auto stray = window(3000, 0, 10, 10);
        app->attributes["AXFocusedWindow"] = AXElementRef(stray);
        QCOMPARE(api.service.getWindowUnderCursor({1000, 100}), AXElementRef(stray));
    }

    // The position is written, then the size, then the position again, and once more when the
    // window landed off; the enhanced-user-interface switch is off meanwhile and put back when its
    // old state was readable.
    void setFrame_data() {
        QTest::addColumn<double>("drift");
        QTest::addColumn<int>("writes");
        QTest::addColumn<int>("switchBefore"); // -1: unreadable
        QTest::addColumn<bool>("switchAfter");
        QTest::newRow("lands within tolerance, switch unreadable") << 2.0 << 2 << -1 << false;
        QTest::newRow("lands off: third write, switch was on") << 2.5 << 3 << 1 << true;
        QTest::newRow("switch was off") << 0.0 << 2 << 0 << false;
    }
    void setFrame() {
        QFETCH(double, drift);
        QFETCH(int, writes);
        QFETCH(int, switchBefore);
        QFETCH(bool, switchAfter);
        FakeAccessibility api;
        auto app = element("AXApplication");
        api.applications[42] = app;
        if (switchBefore >= 0) {
            app->attributes["AXEnhancedUserInterface"] = switchBefore == 1;
        }
        const auto target = window(0, 0, 100, 100);
        api.positionDrift = drift;
        api.service.setFrame(target, DesktopRect(100, 80, 640, 480));
        QCOMPARE(api.positionWrites, writes);
        QCOMPARE(std::get<DesktopSize>(target->attributes["AXSize"]), (DesktopSize{640, 480}));
        QVERIFY(api.log.last().startsWith(
            "AccessibilityService.setFrame requested=(100.0,80.0 640.0x480.0) "
            "axOrigin=(100.0,520.0) primaryMaxY=1080.0 posError=0 sizeError=0 after=("));
        QCOMPARE(std::get<bool>(app->attributes["AXEnhancedUserInterface"]), switchAfter);
    }

    void trustFramesAndRoles() {
        FakeAccessibility api;
        QVERIFY(!api.service.isTrusted());
        api.focusedApplicationReadable = true;
        QVERIFY(api.service.isTrusted()); // the probe counts as trust
        const auto w = window(10, 20, 300, 200);
        QCOMPARE(*api.service.frame(w), DesktopRect(10, 860, 300, 200));
        // Only the window role makes a standard window; a sheet or an unreadable role does not.
        QVERIFY(api.service.isStandardWindow(w));
        QVERIFY(!api.service.isStandardWindow(element("AXSheet")));
        QVERIFY(!api.service.isStandardWindow(std::make_shared<FakeElement>()));
    }

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
        QCOMPARE(listed[0].scale, 2.0);
        QCOMPARE(listed[0].topLeftBounds, DesktopRect(0, 0, 1440, 900));
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
        api.registry = std::nullopt;
        QCOMPARE(api.service.getDisplayName(5), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(MacosServicesTest)
#include "tst_macos_services.moc"
