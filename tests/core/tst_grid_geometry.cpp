#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/cell_selection_state.h"
#include "core/geometry/grid_calculator.h"
#include "core/policies/display_cycle.h"
#include "core/policies/frame_apply_policy.h"

#include <QJsonDocument>
#include <QTest>
#include <cmath>
#include <limits>

using namespace paneforge;

using Splits = std::vector<double>;
using Items = std::vector<DisplaySortItem>;
Q_DECLARE_METATYPE(Splits)

namespace {

QJsonValue parse(const char* text) {
    return QJsonDocument::fromJson(QByteArray(text)).object();
}

GridDefinition grid(Splits vertical, Splits horizontal) {
    return GridDefinition(QStringLiteral("g"), QStringLiteral("G"), std::move(vertical),
                          std::move(horizontal));
}

} // namespace

class GridGeometryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rectsAreHalfOpen() {
        const DesktopRect r(0, 0, 100, 80);
        QVERIFY(r.contains({0, 0}) && r.contains({99.999, 79.999}));
        QVERIFY(!r.contains({100, 50}) && !r.contains({50, 80}));
        QVERIFY(!DesktopRect(10, 10, 0, 50).contains({10, 20}));
        QVERIFY(!DesktopRect::null().contains({0, 0}));
        // Negative sizes are standardized.
        QVERIFY(DesktopRect(100, 100, -50, -20).contains({60, 90}));
        QCOMPARE(DesktopRect(100, 100, -50, -20).standardized(), DesktopRect(50, 80, 50, 20));
    }

    void unionCoversTheGapAndIgnoresNull() {
        const DesktopRect left(0, 0, 100, 50);
        const DesktopRect right(110, 20, 40, 60);
        QCOMPARE(left.united(right), DesktopRect(0, 0, 150, 80));
        QCOMPARE(DesktopRect::null().united(right), right);
        QCOMPARE(left.united(DesktopRect::null()), left);
        // A zero-sized rectangle still extends the union to its position.
        QCOMPARE(left.united(DesktopRect(200, 0, 0, 0)), DesktopRect(0, 0, 200, 50));
    }

    void normalizeSplits_data() {
        QTest::addColumn<Splits>("input");
        QTest::addColumn<Splits>("expected");
        QTest::newRow("clamp, drop edges and near duplicates")
            << Splits{0.7, 0.3, 0.30005, 1.2, -0.1, 0.00005} << Splits{0.3, 0.7};
        QTest::newRow("0.3001 is within epsilon of 0.3") << Splits{0.3001, 0.3} << Splits{0.3};
        QTest::newRow("0.30010001 is not") << Splits{0.3, 0.30010001} << Splits{0.3, 0.30010001};
        QTest::newRow("1 - epsilon is an edge") << Splits{0.9999} << Splits{};
        QTest::newRow("NaN and infinity dropped")
            << Splits{std::nan(""), std::numeric_limits<double>::infinity(), 0.5} << Splits{0.5};
        QTest::newRow("run collapses onto its first member")
            << Splits{0.50008, 0.5, 0.50016} << Splits{0.5, 0.50016};
    }
    void normalizeSplits() {
        QFETCH(Splits, input);
        QFETCH(Splits, expected);
        QCOMPARE(GridSplitNormalizer(0.0001).normalizeSplits(input), expected);
    }

    void cellsAreRowMajor() {
        const auto nine = GridCalculator().getCells(grid({0.6, 0.2}, {0.25, 0.75}));
        QCOMPARE(nine.size(), size_t(9));
        QCOMPARE(nine[5], (GridCell{1, 2, {0.6, 0.25, 0.4, 0.5}}));

        const auto whole = GridCalculator().getCells(grid({1.5, -2}, {}));
        QCOMPARE(whole.size(), size_t(1));
        QCOMPARE(whole[0], (GridCell{0, 0, {0, 0, 1, 1}}));
    }

    void definitionEqualityIsById() {
        const GridDefinition a(QStringLiteral("x"), QStringLiteral("A"), {0.5}, {});
        QVERIFY(a == a.withName(QStringLiteral("B")).withSplits({0.1}, {0.2}));
        QVERIFY(a != GridDefinition(QStringLiteral("y"), QStringLiteral("A"), {0.5}, {}));
        QVERIFY(!a.hasSameContent(a.withName(QStringLiteral("B"))));
    }

    void definitionJsonKeepsValuesAsGiven() {
        const auto decoded = GridDefinition::fromJson(parse(
            R"({"id":"a","name":"A","horizontalSplits":[1.5,-0.25,1.5],"verticalSplits":[0.010000000000000009],"extra":true})"));
        QCOMPARE(decoded.horizontalSplits(), (Splits{1.5, -0.25, 1.5}));
        QCOMPARE(decoded.verticalSplits(), (Splits{0.010000000000000009}));
        QVERIFY(GridDefinition::fromJson(decoded.toJson()).hasSameContent(decoded));
    }

    void framesAndSpaces() {
        const CoordinateTransformer t;
        const DesktopRect visible(0, 25, 1000, 800);
        QCOMPARE(t.toNormalizedPoint({0, 25}, visible), std::optional(NormalizedPoint{0, 1}));
        QCOMPARE(t.toNormalizedPoint({500, 425}, visible),
                 std::optional(NormalizedPoint{0.5, 0.5}));
        QVERIFY(!t.toNormalizedPoint({0, 825}, visible));    // the top edge is outside
        QVERIFY(!t.toNormalizedPoint({1000, 425}, visible)); // so is the right one
        QCOMPARE(t.toFrame({0, 0, 1, 1}, visible), visible);
        QCOMPARE(t.toFrame({0, 0, 1, 0.5}, visible), DesktopRect(0, 425, 1000, 400));
        QCOMPARE(t.toAccessibilityOrigin({10, 20, 300, 200}, 1080), (DesktopPoint{10, 860}));
        QCOMPARE(t.toCocoaOrigin({10, 860}, {300, 200}, 1080), (DesktopPoint{10, 20}));
        QCOMPARE(t.toAccessibilityPoint({5, 80}, 1080), (DesktopPoint{5, 1000}));
    }

    void cellFramesWithMargins() {
        const CellFrameCalculator calculator;
        const DesktopRect visible(0, 25, 1000, 800);
        const auto pair =
            calculator.getCellFrames(GridCalculator().getCells(grid({0.5}, {})), visible, 8);
        // The margin at the outer edges and between the cells.
        QCOMPARE(pair.value(QStringLiteral("r0-c0")), DesktopRect(8, 33, 488, 784));
        QCOMPARE(pair.value(QStringLiteral("r0-c1")), DesktopRect(504, 33, 488, 784));

        const auto huge =
            calculator.getCellFrames(GridCalculator().getCells(grid({0.5}, {})), visible, 600);
        QCOMPARE(huge.value(QStringLiteral("r0-c0")).width(), 0.0);

        // A subset's own extremes count as outer edges.
        const auto four = GridCalculator().getCells(grid({0.5}, {0.5}));
        const auto subset = calculator.getCellFrames({four[3]}, visible, 8);
        QCOMPARE(subset.value(QStringLiteral("r1-c1")), DesktopRect(504, 33, 488, 388));
    }

    void hitTestingAndSelection() {
        const auto four = GridCalculator().getCells(grid({0.5}, {0.5}));
        QCOMPARE(GridHitTester().getCell(four, {0.5, 0.5})->key(), QStringLiteral("r0-c0"));
        QCOMPARE(GridHitTester().getCell(four, {0.75, 0.5})->key(), QStringLiteral("r0-c1"));
        QVERIFY(!GridHitTester().getCell(four, {1.01, 0.5}));

        CellSelectionState selection;
        selection.add(four[2]);
        selection.add(four[1]);
        selection.add(four[1]);
        const auto chosen = selection.getSelectedCells(four);
        QCOMPARE(chosen.size(), size_t(2));
        QCOMPARE(chosen[0].key(), QStringLiteral("r0-c1"));
        QCOMPARE(chosen[1].key(), QStringLiteral("r1-c0"));
    }

    void originRetry() {
        const auto retry = [](std::optional<DesktopRect> actual) {
            return FrameApplyPolicy::originNeedsRetry({0, 0, 500, 400}, actual,
                                                      FrameApplyPolicy::originTolerance);
        };
        QVERIFY(!retry(DesktopRect(2, 0, 480, 396))); // exactly the tolerance; the size is not
        QVERIFY(retry(DesktopRect(2.01, 0, 500, 400)));
        QVERIFY(retry(DesktopRect(0, -2.01, 500, 400)));
        QVERIFY(retry(std::nullopt));
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
    }

    void displayOrder() {
        using Id = std::optional<std::uint32_t>;
        const Items row = {
            {5, {3840, 0, 1920, 1080}}, {7, {0, 0, 1920, 1080}}, {3, {1920, 0, 1920, 1080}}};
        QCOMPARE(DisplayCycle::nextId(7, row), Id(3));  // left to right
        QCOMPARE(DisplayCycle::nextId(5, row), Id(7));  // wraps
        QCOMPARE(DisplayCycle::nextId(99, row), Id(7)); // an unknown current one goes first
        const Items stacked = {
            {1, {0, 1080, 1920, 1080}}, {2, {0, 0, 1920, 1080}}, {3, {0, 2160, 1920, 1080}}};
        QCOMPARE(DisplayCycle::nextId(2, stacked), Id(1)); // the lower one first
        QCOMPARE(DisplayCycle::nextId(4, {{9, {0, 0, 10, 10}}, {4, {0, 0, 10, 10}}}), Id(9));
        QCOMPARE(DisplayCycle::nextId(1, {{1, {0, 0, 10, 10}}}), Id());
    }

    void proportionalMapping() {
        const auto mapped = [](DesktopRect window, DesktopRect source = {0, 0, 1920, 1080}) {
            return WindowDisplayMapper::mappedFrame(window, source, {1920, 0, 960, 500});
        };
        QCOMPARE(mapped({480, 270, 960, 540}), DesktopRect(2160, 125, 480, 250));
        // Wider than its frame: fills the width; left of it: lands at the left edge.
        QCOMPARE(mapped({-100, 0, 2500, 540}), DesktopRect(1920, 0, 960, 250));
        QCOMPARE(mapped({-900, 540, 480, 540}), DesktopRect(1920, 250, 240, 250));
        QCOMPARE(mapped({0, 1080, 0, 0}), DesktopRect(1920, 475, 48, 25)); // zero: five percent
        // A source without width divides by one.
        QCOMPARE(mapped({0.25, 540, 0.5, 540}, {0, 0, 0, 1080}), DesktopRect(2160, 250, 480, 250));
    }
};

QTEST_APPLESS_MAIN(GridGeometryTest)
#include "tst_grid_geometry.moc"
