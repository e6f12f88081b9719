#include "core/policies/display_cycle.h"
#include "core/policies/frame_apply_policy.h"

#include <QTest>

using namespace paneforge;

using Items = std::vector<DisplaySortItem>;

class WindowPoliciesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void originRetry_data() {
        QTest::addColumn<std::optional<DesktopRect>>("actual"); // requested: (0, 0, 500, 400)
        QTest::addColumn<bool>("retry");
        QTest::newRow("exactly the tolerance")
            << std::optional(DesktopRect(2, 0, 480, 396)) << false;
        QTest::newRow("just beyond in x") << std::optional(DesktopRect(2.01, 0, 500, 400)) << true;
        QTest::newRow("just beyond in y") << std::optional(DesktopRect(0, -2.01, 500, 400)) << true;
        QTest::newRow("size differs only") << std::optional(DesktopRect(0, 0, 480, 396)) << false;
        QTest::newRow("no actual frame") << std::optional<DesktopRect>() << true;
    }
    void originRetry() {
        QFETCH(std::optional<DesktopRect>, actual);
        QFETCH(bool, retry);
        QCOMPARE(FrameApplyPolicy::originNeedsRetry({0, 0, 500, 400}, actual,
                                                    FrameApplyPolicy::originTolerance),
                 retry);
    }

    void candidatePick() {
        const std::vector<std::optional<DesktopRect>> frames = {
            std::nullopt, DesktopRect(0, 0, 100, 100), DesktopRect(50, 50, 100, 100)};
        QCOMPARE(WindowCandidatePicker::pickIndex({60, 60}, frames, 0), std::optional(1));
        QCOMPARE(WindowCandidatePicker::pickIndex({120, 120}, frames, 1), std::optional(2));
        QCOMPARE(WindowCandidatePicker::pickIndex({500, 500}, frames, 0), std::optional(0));
        QCOMPARE(WindowCandidatePicker::pickIndex({500, 500}, frames, 3), std::nullopt);
        QCOMPARE(WindowCandidatePicker::pickIndex({100, 50}, {DesktopRect(0, 0, 100, 100)},
                                                  std::nullopt),
                 std::nullopt); // the right edge is outside
        QVERIFY(WindowRolePolicy::isMovableWindow("AXWindow"));
        QVERIFY(!WindowRolePolicy::isMovableWindow("axwindow"));
        QVERIFY(WindowRolePolicy::isApplication("AXApplication"));
    }

    void displayOrder_data() {
        QTest::addColumn<Items>("displays");
        QTest::addColumn<uint>("current");
        QTest::addColumn<int>("next"); // -1: none
        const Items row = {
            {5, {3840, 0, 1920, 1080}}, {7, {0, 0, 1920, 1080}}, {3, {1920, 0, 1920, 1080}}};
        QTest::newRow("left to right") << row << 7u << 3;
        QTest::newRow("middle") << row << 3u << 5;
        QTest::newRow("wraps") << row << 5u << 7;
        QTest::newRow("unknown current goes first") << row << 99u << 7;
        QTest::newRow("stacked: lower first")
            << Items{{1, {0, 1080, 1920, 1080}}, {2, {0, 0, 1920, 1080}}} << 2u << 1;
        QTest::newRow("same frame: by id")
            << Items{{9, {0, 0, 10, 10}}, {4, {0, 0, 10, 10}}} << 4u << 9;
        QTest::newRow("one display") << Items{{1, {0, 0, 10, 10}}} << 1u << -1;
    }
    void displayOrder() {
        QFETCH(Items, displays);
        QFETCH(uint, current);
        QFETCH(int, next);
        const auto result = DisplayCycle::nextId(current, displays);
        QCOMPARE(result.has_value(), next >= 0);
        if (result) {
            QCOMPARE(int(*result), next);
        }
    }

    void proportionalMapping_data() {
        QTest::addColumn<DesktopRect>("window");
        QTest::addColumn<DesktopRect>("source");
        QTest::addColumn<DesktopRect>("expected");
        const DesktopRect target(1920, 0, 960, 500);
        QTest::newRow("proportional")
            << DesktopRect(480, 270, 960, 540) << DesktopRect(0, 0, 1920, 1080)
            << DesktopRect(2160, 125, 480, 250);
        QTest::newRow("wider than its frame fills the width")
            << DesktopRect(-100, 0, 2500, 540) << DesktopRect(0, 0, 1920, 1080)
            << DesktopRect(1920, 0, 960, 250);
        QTest::newRow("left of its frame lands at the left edge")
            << DesktopRect(-900, 540, 480, 540) << DesktopRect(0, 0, 1920, 1080)
            << DesktopRect(1920, 250, 240, 250);
        QTest::newRow("zero size becomes five percent")
            << DesktopRect(0, 1080, 0, 0) << DesktopRect(0, 0, 1920, 1080)
            << DesktopRect(1920, 475, 48, 25);
        QTest::newRow("zero-width source divides by one")
            << DesktopRect(0.25, 540, 0.5, 540) << DesktopRect(0, 0, 0, 1080)
            << DesktopRect(2160, 250, 480, 250);
    }
    void proportionalMapping() {
        QFETCH(DesktopRect, window);
        QFETCH(DesktopRect, source);
        QFETCH(DesktopRect, expected);
        QCOMPARE(WindowDisplayMapper::mappedFrame(window, source, DesktopRect(1920, 0, 960, 500)),
                 expected);
    }
};

QTEST_APPLESS_MAIN(WindowPoliciesTest)
#include "tst_window_policies.moc"
