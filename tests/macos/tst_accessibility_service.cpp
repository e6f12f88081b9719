#include "platform/macos/accessibility_service.h"

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
    bool trusted = false;
    bool focusedApplicationReadable = false;
    double maxY = 1080;
    Fake hit;
    std::int32_t hitError = ax_error::kSuccess;
    std::map<std::int32_t, Fake> applications;
    double positionDrift = 0;
    int positionWrites = 0;
    std::pair<float, float> lastHitTest{};
    QStringList systemLines;
    Fake systemWide = std::make_shared<FakeElement>();

    bool isProcessTrusted(bool) override { return trusted; }
    AXElementRef systemWideElement() override { return systemWide; }
    AXResult elementAtPosition(float x, float y) override {
        lastHitTest = {x, y};
        return {hitError, AXElementRef(hit)};
    }
    AXResult copyAttribute(const AXElementRef& element, const QString& name) override {
        if (element == systemWide && name == "AXFocusedApplication") {
            return {focusedApplicationReadable ? ax_error::kSuccess : ax_error::kNoValue,
                    AXOther{}};
        }
        const auto* fake = dynamic_cast<const FakeElement*>(element.get());
        const auto it = fake ? fake->attributes.find(name) : decltype(fake->attributes.end()){};
        if (!fake || it == fake->attributes.end()) {
            return {ax_error::kNoValue, std::monostate{}};
        }
        return {ax_error::kSuccess, it->second};
    }
    std::int32_t setAttribute(const AXElementRef& element, const QString& name,
                              const AXValue& value) override {
        auto* fake = const_cast<FakeElement*>(dynamic_cast<const FakeElement*>(element.get()));
        AXValue stored = value;
        if (name == "AXPosition") {
            ++positionWrites;
            // The first writes land off; the third one sticks.
            if (positionWrites < 3) {
                const auto p = std::get<DesktopPoint>(value);
                stored = DesktopPoint{p.x + positionDrift, p.y};
            }
        }
        fake->attributes[name] = stored;
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
    void systemLog(const QString& message) override { systemLines << message; }
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
Fake window(double x, double y, double w, double h, const QString& title = "W") {
    auto e = element("AXWindow");
    e->attributes["AXPosition"] = DesktopPoint{x, y};
    e->attributes["AXSize"] = DesktopSize{w, h};
    e->attributes["AXTitle"] = title;
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

} // namespace

class AccessibilityServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roleWalkIsBoundedToTenElements_data() {
        QTest::addColumn<int>("depth");
        QTest::addColumn<bool>("viaWalk");
        QTest::newRow("the window itself") << 0 << true;
        QTest::newRow("a button nine levels below") << 9 << true;
        QTest::newRow("ten levels below") << 10 << false;
    }
    void roleWalkIsBoundedToTenElements() {
        QFETCH(int, depth);
        QFETCH(bool, viaWalk);
        FakeAccessibility api;
        const auto target = window(0, 0, 500, 500);
        api.hit = chainBelow(target, depth);
        QCOMPARE(api.service.getWindowUnderCursor({100, 900}),
                 viaWalk ? AXElementRef(target) : AXElementRef());
        // Past the walk there is no application and no window: the fallback says so.
        QCOMPARE(api.log, viaWalk ? QStringList()
                                  : QStringList{"AccessibilityService.resolveWindow "
                                                "source=application nil"});
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
        const auto first = window(0, 0, 800, 600, "first");
        const auto second = window(100, 100, 800, 600, "second");
        const auto focused = window(1500, 0, 300, 300, "focused");
        app->attributes["AXWindows"] = std::vector<AXElementRef>{nullptr, first, second, focused};
        app->attributes["AXFocusedWindow"] = AXElementRef(focused);

        // Desktop (200, 800) is accessibility (200, 280): inside both; the first in order wins.
        QCOMPARE(api.service.getWindowUnderCursor({200, 800}), AXElementRef(first));
        QVERIFY(api.log.last().startsWith(
            "AccessibilityService.resolveWindow source=application pid=42 role=AXWindow"));
        QVERIFY(api.log.last().contains("title=first"));
        // Nowhere near any window: the focused one, even though it lies elsewhere.
        QCOMPARE(api.service.getWindowUnderCursor({1000, 100}), AXElementRef(focused));
        // A focused window missing from AXWindows is still returned.
        const auto stray = window(3000, 0, 10, 10, "stray");
        app->attributes["AXFocusedWindow"] = AXElementRef(stray);
        QCOMPARE(api.service.getWindowUnderCursor({1000, 100}), AXElementRef(stray));
    }

    void hitTestFailureAndNoScreens() {
        FakeAccessibility api;
        api.maxY = 0;
        api.hitError = ax_error::kNoValue;
        QVERIFY(!api.service.getWindowUnderCursor({100, 50}));
        QCOMPARE(api.lastHitTest, std::make_pair(100.0f, -50.0f));
        QCOMPARE(
            api.log,
            QStringList{"AccessibilityService.copyElementAt failed ax=(100.0,-50.0) error=-25212"});
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

    void trustDescriptionsAndRoles() {
        FakeAccessibility api;
        QVERIFY(!api.service.isTrusted());
        api.focusedApplicationReadable = true;
        QVERIFY(api.service.isTrusted()); // the probe counts as trust
        api.service.requestTrustPrompt();
        QCOMPARE(api.systemLines,
                 QStringList{"AccessibilityService.requestTrustPrompt: trusted=false"});

        const auto w = window(10, 20, 300, 200, "Notes");
        w->attributes["AXSubrole"] = QString("AXStandardWindow");
        QCOMPARE(api.service.describeWindow(w),
                 QStringLiteral("pid=42 role=AXWindow subrole=AXStandardWindow title=Notes "
                                "cocoaFrame=(10.0,860.0 300.0x200.0)"));
        auto bare = std::make_shared<FakeElement>();
        QCOMPARE(api.service.describeWindow(bare),
                 QStringLiteral("pid=nil role=nil subrole=nil title=nil cocoaFrame=nil"));
        QCOMPARE(*api.service.frame(w), DesktopRect(10, 860, 300, 200));
        // Only the window role makes a standard window; a sheet or an unreadable role does not.
        QVERIFY(api.service.isStandardWindow(w));
        QVERIFY(!api.service.isStandardWindow(element("AXSheet")));
        QVERIFY(!api.service.isStandardWindow(bare));
    }
};

QTEST_APPLESS_MAIN(AccessibilityServiceTest)
#include "tst_accessibility_service.moc"
