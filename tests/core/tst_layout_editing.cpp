#include "core/layouts/grid_editor_service.h"
#include "core/layouts/layout_preset.h"
#include "core/layouts/layout_thumbnail_renderer.h"

#include <QTest>

using namespace paneforge;

using Splits = std::vector<double>;

namespace {
GridDefinition grid(Splits vertical, Splits horizontal) {
    return GridDefinition(QStringLiteral("id-1"), QStringLiteral("Mine"), std::move(vertical),
                          std::move(horizontal));
}
} // namespace

class LayoutEditingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addingLinesCleansBothLists() {
        const GridEditorService editor;
        const auto added = editor.addVerticalLine(grid({0.5}, {0.9, 0.2, 0.2}), 0.5);
        QCOMPARE(added.verticalSplits(), (Splits{0.5}));
        QCOMPARE(added.horizontalSplits(), (Splits{0.2, 0.9}));
        QCOMPARE(added.name(), QStringLiteral("Mine"));
        QCOMPARE(added.id(), QStringLiteral("id-1"));

        const auto edge = editor.addHorizontalLine(grid({}, {0.7, 0.3}), 0.00005);
        QCOMPARE(edge.horizontalSplits(), (Splits{0.3, 0.7}));
        QCOMPARE(editor.addHorizontalLine(grid({}, {0.7}), 0.25).horizontalSplits(),
                 (Splits{0.25, 0.7}));
    }

    void removeLineNear_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<double>("threshold");
        QTest::addColumn<Splits>("vertical");
        QTest::addColumn<Splits>("horizontal");
        // Layout: vertical [0.5], horizontal [0.75]
        QTest::newRow("just beyond the threshold in floating point")
            << 0.51 << 0.3 << 0.01 << Splits{0.5} << Splits{0.75};
        QTest::newRow("exactly at the threshold")
            << 0.5078125 << 0.3 << 0.0078125 << Splits{} << Splits{0.75};
        QTest::newRow("tie goes to the horizontal line")
            << 0.625 << 0.625 << 0.2 << Splits{0.5} << Splits{};
        QTest::newRow("vertical strictly closer") << 0.53 << 0.6 << 0.2 << Splits{} << Splits{0.75};
    }
    void removeLineNear() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(double, threshold);
        QFETCH(Splits, vertical);
        QFETCH(Splits, horizontal);
        const auto result =
            GridEditorService().removeLineNear(grid({0.5}, {0.75}), {x, y}, threshold);
        QCOMPARE(result.verticalSplits(), vertical);
        QCOMPARE(result.horizontalSplits(), horizontal);
    }

    void unsuccessfulRemovalReturnsTheLayoutUntouched() {
        const auto messy = grid({0.9, 0.1, 0.1}, {});
        const auto result = GridEditorService().removeLineNear(messy, {0.5, 0.5}, 0.1);
        QCOMPARE(result.verticalSplits(), (Splits{0.9, 0.1, 0.1}));
        const auto empty = grid({}, {});
        QVERIFY(GridEditorService().removeLineNear(empty, {0.5, 0.5}, 1.0).hasSameContent(empty));
        // Duplicates of the removed line within epsilon go together.
        QCOMPARE(GridEditorService()
                     .removeLineNear(grid({0.5, 0.50005, 0.2}, {}), {0.5, 0.5}, 0.1)
                     .verticalSplits(),
                 (Splits{0.2}));
    }

    void presets() {
        const auto all = LayoutPresetCatalog::all();
        QCOMPARE(all.size(), size_t(5));
        QCOMPARE(all.front().id, LayoutPresetId::Columns2);
        QCOMPARE(all.back().verticalSplits, (Splits{0.3333333333333333, 0.6666666666666666}));
        QCOMPARE(LayoutPresetCatalog::preset(LayoutPresetId::Grid2x2).title,
                 QString::fromUtf8("2×2"));
        QVERIFY(!layoutPresetIdFromRawValue(QStringLiteral("Columns2")));
        QCOMPARE(layoutPresetIdFromRawValue(QStringLiteral("leftThird")),
                 std::optional(LayoutPresetId::LeftThird));

        const auto three = grid({0.2, 0.4, 0.6}, {});
        const auto rows =
            LayoutPresetApplier::applied(three, LayoutPresetCatalog::preset(LayoutPresetId::Rows2));
        QCOMPARE(rows.verticalSplits(), Splits{});
        QCOMPARE(rows.horizontalSplits(), Splits{0.5});
        QCOMPARE(rows.name(), three.name());
        QCOMPARE(three.verticalSplits().size(), size_t(3));
    }

    void thumbnailsUseSnappingGeometryInKeyOrder() {
        const auto single = LayoutThumbnailRenderer::cellFrames(grid({}, {}), {0, 0, 100, 60}, 4);
        QCOMPARE(single, (std::vector<DesktopRect>{{4, 4, 92, 52}}));

        // Eleven rows: "r10-c0" sorts between "r1-c0" and "r2-c0" in plain string order.
        Splits rows;
        for (int i = 1; i <= 10; ++i) {
            rows.push_back(i / 11.0);
        }
        const auto frames =
            LayoutThumbnailRenderer::cellFrames(grid({}, rows), {0, 0, 110, 110}, 0);
        QCOMPARE(frames.size(), size_t(11));
        QCOMPARE(frames[0].maxY(), 110.0); // r0-c0: the top row (y grows upwards)
        QCOMPARE(frames[1].maxY(), 100.0); // r1-c0
        QCOMPARE(frames[2].minY(), 0.0);   // r10-c0, the bottom row, sorts before r2-c0
        QCOMPARE(frames[3].maxY(), 90.0);  // r2-c0
        QCOMPARE(LayoutThumbnailRenderer::cellFrames(grid({}, rows), {0, 0, 110, 110}, 0), frames);
    }
};

QTEST_APPLESS_MAIN(LayoutEditingTest)
#include "tst_layout_editing.moc"
