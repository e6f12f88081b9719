#include "core/geometry/cell_frame_calculator.h"
#include "core/geometry/cell_selection_state.h"
#include "core/geometry/grid_calculator.h"

#include <QJsonDocument>
#include <QTest>
#include <cmath>
#include <limits>

using namespace paneforge;

using Splits = std::vector<double>;
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
    void containsIsHalfOpen_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        QTest::newRow("bottom-left corner") << 0.0 << 0.0 << true;
        QTest::newRow("left edge") << 0.0 << 50.0 << true;
        QTest::newRow("right edge") << 100.0 << 50.0 << false;
        QTest::newRow("top edge") << 50.0 << 80.0 << false;
        QTest::newRow("just inside top-right") << 99.999 << 79.999 << true;
        QTest::newRow("below") << 50.0 << -0.001 << false;
    }
    void containsIsHalfOpen() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        QCOMPARE(DesktopRect(0, 0, 100, 80).contains({x, y}), inside);
    }

    void emptyAndNullContainNothing() {
        QVERIFY(!DesktopRect(10, 10, 0, 50).contains({10, 20}));
        QVERIFY(!DesktopRect::null().contains({0, 0}));
        QVERIFY(DesktopRect::null().isEmpty());
    }

    void negativeSizesAreStandardized() {
        const DesktopRect r(100, 100, -50, -20);
        QCOMPARE(r.minX(), 50.0);
        QCOMPARE(r.maxY(), 100.0);
        QVERIFY(r.contains({60, 90}));
        QCOMPARE(r.standardized(), DesktopRect(50, 80, 50, 20));
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
        QTest::newRow("just inside the edges")
            << Splits{0.99989, 0.00011} << Splits{0.00011, 0.99989};
        QTest::newRow("NaN and infinity dropped")
            << Splits{std::nan(""), std::numeric_limits<double>::infinity(), 0.5} << Splits{0.5};
        QTest::newRow("run collapses onto its first member")
            << Splits{0.50008, 0.5, 0.50016} << Splits{0.5, 0.50016};
        QTest::newRow("empty") << Splits{} << Splits{};
    }
    void normalizeSplits() {
        QFETCH(Splits, input);
        QFETCH(Splits, expected);
        QCOMPARE(GridSplitNormalizer(0.0001).normalizeSplits(input), expected);
    }

    void cellsAreRowMajor() {
        const auto cells = GridCalculator().getCells(grid({}, {0.5}));
        QCOMPARE(cells.size(), size_t(2));
        QCOMPARE(cells[0], (GridCell{0, 0, {0, 0, 1, 0.5}}));
        QCOMPARE(cells[1], (GridCell{1, 0, {0, 0.5, 1, 0.5}}));

        const auto nine = GridCalculator().getCells(grid({0.6, 0.2}, {0.25, 0.75}));
        QCOMPARE(nine.size(), size_t(9));
        QCOMPARE(nine[5].rowIndex, 1);
        QCOMPARE(nine[5].columnIndex, 2);
        QCOMPARE(nine[5].rect, (NormalizedRect{0.6, 0.25, 0.4, 0.5}));

        const auto whole = GridCalculator().getCells(grid({1.5, -2}, {}));
        QCOMPARE(whole.size(), size_t(1));
        QCOMPARE(whole[0], (GridCell{0, 0, {0, 0, 1, 1}}));
    }

    void unionIsTheBoundingBox() {
        const auto cells = GridCalculator().getCells(grid({0.5}, {0.5}));
        QVERIFY(!GridCalculator().unionRect({}).has_value());
        QCOMPARE(*GridCalculator().unionRect({cells[1]}), cells[1].rect);
        QCOMPARE(*GridCalculator().unionRect({cells[1], cells[2]}), (NormalizedRect{0, 0, 1, 1}));
    }

    void normalizedRecordsJson() {
        QCOMPARE(NormalizedPoint::fromJson(parse(R"({"x":2,"y":-1})")), (NormalizedPoint{2, -1}));
        QVERIFY_THROWS_EXCEPTION(JsonDecodingError,
                                 NormalizedPoint::fromJson(parse(R"({"x":0.1})")));
        const NormalizedRect rect{0.25, 0.5, 0.5, 0.25};
        QCOMPARE(rect.maxX(), 0.75);
        QCOMPARE(NormalizedRect::fromJson(rect.toJson()), rect);
        QVERIFY(!(NormalizedRect{0, 0, 1, 1} == NormalizedRect{0, 0, 1, 1 + 1e-12}));
        const NormalizedPoint nan{std::nan(""), 0};
        QVERIFY(!(nan == nan));
        QCOMPARE(gridLineOrientationFromRawValue(QStringLiteral("vertical")),
                 std::optional(GridLineOrientation::Vertical));
        QVERIFY(!gridLineOrientationFromRawValue(QStringLiteral("Horizontal")));
        QVERIFY_THROWS_EXCEPTION(JsonDecodingError, gridLineOrientationFromJson(
                                                        QJsonValue(QStringLiteral("Horizontal"))));
        const GridCell cell{1, 2, rect};
        QCOMPARE(GridCell::fromJson(cell.toJson()), cell);
    }

    void definitionEqualityIsById() {
        const GridDefinition a(QStringLiteral("x"), QStringLiteral("A"), {0.5}, {});
        QVERIFY(a == a.withName(QStringLiteral("B")).withSplits({0.1}, {0.2}));
        QVERIFY(a != GridDefinition(QStringLiteral("y"), QStringLiteral("A"), {0.5}, {}));
        QVERIFY(!a.hasSameContent(a.withName(QStringLiteral("B"))));
    }

    void definitionJsonIsStrict_data() {
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("messageNames");
        const auto row = [](const char* tag, const char* json, const char* named) {
            QTest::newRow(tag) << QString(json) << QString(named);
        };
        row("missing verticalSplits", R"({"id":"a","name":"A","horizontalSplits":[]})",
            "verticalSplits");
        row("split not a number",
            R"({"id":"a","name":"A","horizontalSplits":[0.5,"x"],"verticalSplits":[]})",
            "horizontalSplits[1]");
        row("null name", R"({"id":"a","name":null,"horizontalSplits":[],"verticalSplits":[]})",
            "name");
    }
    void definitionJsonIsStrict() {
        QFETCH(QString, json);
        QFETCH(QString, messageNames);
        try {
            GridDefinition::fromJson(QJsonDocument::fromJson(json.toUtf8()).object());
            QFAIL("decoding should fail");
        } catch (const JsonDecodingError& error) {
            QVERIFY2(error.message().contains(messageNames), qPrintable(error.message()));
        }
    }

    void definitionJsonKeepsValuesAsGiven() {
        const auto decoded = GridDefinition::fromJson(parse(
            R"({"id":"a","name":"A","horizontalSplits":[1.5,-0.25,1.5],"verticalSplits":[0.010000000000000009],"extra":true})"));
        QCOMPARE(decoded.horizontalSplits(), (Splits{1.5, -0.25, 1.5}));
        QCOMPARE(decoded.verticalSplits(), (Splits{0.010000000000000009}));
        QVERIFY(GridDefinition::fromJson(decoded.toJson()).hasSameContent(decoded));
    }

    void normalizedPointOfVisibleFrame_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        QTest::addColumn<double>("nx");
        QTest::addColumn<double>("ny");
        // Visible frame (100, 50, 1000, 800)
        QTest::newRow("top-left corner is outside") << 100.0 << 850.0 << false << 0.0 << 0.0;
        QTest::newRow("bottom-left corner") << 100.0 << 50.0 << true << 0.0 << 1.0;
        QTest::newRow("centre") << 600.0 << 450.0 << true << 0.5 << 0.5;
        QTest::newRow("right edge is outside") << 1100.0 << 450.0 << false << 0.0 << 0.0;
        QTest::newRow("another display") << -300.0 << 450.0 << false << 0.0 << 0.0;
    }
    void normalizedPointOfVisibleFrame() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        const auto point = CoordinateTransformer().toNormalizedPoint({x, y}, {100, 50, 1000, 800});
        QCOMPARE(point.has_value(), inside);
        if (inside) {
            QFETCH(double, nx);
            QFETCH(double, ny);
            QCOMPARE(*point, (NormalizedPoint{nx, ny}));
        }
    }

    void framesAndSpaces() {
        const CoordinateTransformer t;
        const DesktopRect visible(0, 25, 1000, 800);
        QCOMPARE(t.toFrame({0, 0, 1, 1}, visible), visible);
        QCOMPARE(t.toFrame({0, 0, 1, 0.5}, visible), DesktopRect(0, 425, 1000, 400));
        QCOMPARE(t.toAccessibilityOrigin({10, 20, 300, 200}, 1080), (DesktopPoint{10, 860}));
        QCOMPARE(t.toCocoaOrigin({10, 860}, {300, 200}, 1080), (DesktopPoint{10, 20}));
        QCOMPARE(t.toAccessibilityPoint({5, 80}, 1080), (DesktopPoint{5, 1000}));
    }

    void cellFramesWithMargins() {
        const CellFrameCalculator calculator;
        const DesktopRect visible(0, 25, 1000, 800);
        const auto single =
            calculator.getCellFrames(GridCalculator().getCells(grid({}, {})), visible, 8);
        QCOMPARE(single.value(QStringLiteral("r0-c0")), DesktopRect(8, 33, 984, 784));

        const auto pair =
            calculator.getCellFrames(GridCalculator().getCells(grid({0.5}, {})), visible, 8);
        const DesktopRect left = pair.value(QStringLiteral("r0-c0"));
        const DesktopRect right = pair.value(QStringLiteral("r0-c1"));
        QCOMPARE(right.minX() - left.maxX(), 8.0);
        QCOMPARE(left.minX(), 8.0);
        QCOMPARE(1000 - right.maxX(), 8.0);

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
};

QTEST_APPLESS_MAIN(GridGeometryTest)
#include "tst_grid_geometry.moc"
