#include "core/layouts/display_identifier.h"
#include "core/layouts/display_layout_service.h"
#include "core/layouts/grid_editor_service.h"
#include "core/layouts/layout_thumbnail_renderer.h"

#include <QTest>

using namespace paneforge;

using Splits = std::vector<double>;

namespace {

const QString kDisplay = QStringLiteral("v16-p2-s7");

GridDefinition layout(const QString& id, const QString& name) {
    return GridDefinition(id, name, {0.5}, {});
}

PaneforgeConfig configWith(const QString& activeId, std::vector<GridDefinition> layouts) {
    DisplayLayoutsMap displays;
    displays.insert_or_assign(kDisplay, DisplayLayouts(activeId, std::move(layouts)));
    return PaneforgeConfig::makeDefault().copying(displays);
}

DisplayLayoutService service() {
    return DisplayLayoutService([n = 0]() mutable { return QStringLiteral("NEW-%1").arg(++n); });
}

DisplayLayoutError errorOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const DisplayLayoutException& e) {
        return e.error();
    }
    throw std::logic_error("the operation should have failed");
}

QString activeId(const PaneforgeConfig& config) {
    return config.displays().at(kDisplay).activeLayoutId();
}

GridDefinition grid(Splits vertical, Splits horizontal) {
    return GridDefinition(QStringLiteral("id-1"), QStringLiteral("Mine"), std::move(vertical),
                          std::move(horizontal));
}

} // namespace

class DisplayLayoutsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stableIds() {
        const DisplayIdentifier withSerial(16, 2, 7);
        QCOMPARE(withSerial.stableId(), "v16-p2-s7");
        QCOMPARE(DisplayIdentifier(16, 2, std::nullopt).stableId(), "v16-p2-sno-serial");
        QCOMPARE(DisplayIdentifier(16, 2, 0).stableId(), "v16-p2-s0"); // zero is a serial
        QVERIFY(DisplayIdentifier::fromJson(withSerial.toJson()) == withSerial);
    }

    void staleOrMissingActiveLayout() {
        const auto config = PaneforgeConfig::makeDefault();
        const auto created = service().getOrCreateLayout(config, kDisplay);
        QCOMPARE(created.id(), QStringLiteral("display-v16-p2-s7"));
        QCOMPARE(created.verticalSplits(), std::vector<double>{0.5});
        QVERIFY(config.displays().empty());

        const auto stale =
            configWith("gone", {layout("a", "A"), layout("b", "B"), layout("c", "C")});
        QVERIFY(!service().getActiveLayout(stale, kDisplay));
        QCOMPARE(service().getOrCreateLayout(stale, kDisplay).id(), QStringLiteral("a"));
        QCOMPARE(activeId(*service().cycleNext(stale, kDisplay)), QStringLiteral("a"));
        QCOMPARE(activeId(*service().cyclePrevious(stale, kDisplay)), QStringLiteral("c"));
        QVERIFY(!service().cycleNext(configWith("a", {layout("a", "A")}), kDisplay));
    }

    void namesAreTrimmedAndCompareWithoutCase_data() {
        QTest::addColumn<QString>("existing");
        QTest::addColumn<QString>("saved");
        QTest::addColumn<bool>("duplicate");
        const auto row = [](const char* name, const char* existing, const char* saved, bool dup) {
            QTest::newRow(name) << QString::fromUtf8(existing) << QString::fromUtf8(saved) << dup;
        };
        row("ASCII", "Work", "work", true);
        row("Greek with final sigma", "ΣΊΣΥΦΟΣ", "σίσυφος", true);
        row("ideographic and no-break spaces trimmed", "Code", "\u3000Code\u00A0\u2028", true);
        row("different names", "Work", "Working", false);
        row("stored name is compared untrimmed", " Work", "work", false);
    }
    void namesAreTrimmedAndCompareWithoutCase() {
        QFETCH(QString, existing);
        QFETCH(QString, saved);
        QFETCH(bool, duplicate);
        const auto config = configWith("a", {layout("a", existing)});
        if (duplicate) {
            QCOMPARE(errorOf([&] { service().save(config, kDisplay, layout("b", saved)); }),
                     DisplayLayoutError::DuplicateName);
            QCOMPARE(errorOf([&] { service().saveAsNew(config, kDisplay, layout("a", saved)); }),
                     DisplayLayoutError::DuplicateName);
        } else {
            const auto updated = service().save(config, kDisplay, layout("b", saved));
            QCOMPARE(updated.displays().at(kDisplay).layout("b")->name(), saved.trimmed());
        }
    }

    void savingRules() {
        const auto empty = PaneforgeConfig::makeDefault();
        const auto first = service().save(empty, kDisplay, layout("w", "  Work "));
        QCOMPARE(first.displays().at(kDisplay).layout("w")->name(), QStringLiteral("Work"));
        QCOMPARE(activeId(first), QStringLiteral("w"));
        // Its own id is exempt: renaming to WORK succeeds.
        const auto renamed = service().save(first, kDisplay, layout("w", "WORK"));
        QCOMPARE(renamed.displays().at(kDisplay).layouts().size(), size_t(1));
        QCOMPARE(errorOf([&] { service().save(first, kDisplay, layout("x", " \t\n")); }),
                 DisplayLayoutError::EmptyName);

        const auto copied = service().saveAsNew(first, kDisplay, layout("w", "Copy"));
        QCOMPARE(copied.displays().at(kDisplay).layouts().size(), size_t(2));
        QCOMPARE(activeId(copied), QStringLiteral("NEW-1"));
    }

    void deleteNeighbourRule_data() {
        QTest::addColumn<QString>("active");
        QTest::addColumn<QString>("deleted");
        QTest::addColumn<QString>("expectedActive");
        const auto row = [](const char* name, QString active, QString deleted, QString expected) {
            QTest::newRow(name) << active << deleted << expected;
        };
        row("active last goes to previous", "c", "c", "b");
        row("active first goes to next", "a", "a", "b");
        row("active middle goes to next", "b", "b", "c");
        row("inactive keeps active", "a", "c", "a");
        row("stale active stays", "gone", "b", "gone");
    }
    void deleteNeighbourRule() {
        QFETCH(QString, active);
        QFETCH(QString, deleted);
        QFETCH(QString, expectedActive);
        const auto config =
            configWith(active, {layout("a", "A"), layout("b", "B"), layout("c", "C")});
        const auto updated = service().deleteLayout(config, kDisplay, deleted);
        QCOMPARE(activeId(updated), expectedActive);
        QVERIFY(!updated.displays().at(kDisplay).containsLayoutId(deleted));
        QCOMPARE(config.displays().at(kDisplay).layouts().size(), size_t(3));
    }

    void ownershipErrors() {
        const auto one = configWith("a", {layout("a", "A")});
        QCOMPARE(errorOf([&] { service().deleteLayout(one, kDisplay, "a"); }),
                 DisplayLayoutError::LastLayout);
        QCOMPARE(errorOf([&] { service().deleteLayout(one, kDisplay, "zz"); }),
                 DisplayLayoutError::LayoutNotOwned);
        QCOMPARE(errorOf([&] { service().setActiveLayout(one, "other", "a"); }),
                 DisplayLayoutError::LayoutNotOwned);
        QCOMPARE(errorOf([&] { service().selectLayout(one, kDisplay, "b"); }),
                 DisplayLayoutError::LayoutNotOwned);
        const auto [selected, grid] = service().selectLayout(
            configWith("b", {layout("a", "A"), layout("b", "B")}), kDisplay, "a");
        QCOMPARE(grid.id(), QStringLiteral("a"));
        QCOMPARE(activeId(selected), QStringLiteral("a"));
    }

    void addingLinesCleansBothLists() {
        const GridEditorService editor;
        const auto added = editor.addVerticalLine(grid({0.5}, {0.9, 0.2, 0.2}), 0.5);
        QCOMPARE(added.verticalSplits(), (Splits{0.5}));
        QCOMPARE(added.horizontalSplits(), (Splits{0.2, 0.9}));
        const auto edge = editor.addHorizontalLine(grid({}, {0.7, 0.3}), 0.00005);
        QCOMPARE(edge.horizontalSplits(), (Splits{0.3, 0.7}));
        QCOMPARE(editor.addHorizontalLine(grid({}, {0.7}), 0.25).horizontalSplits(),
                 (Splits{0.25, 0.7}));
    }

    // From vertical [0.5] and horizontal [0.75]; the nearer line goes, a tie to the horizontal one.
    void removeLineNear() {
        const auto removed = [](double x, double y, double threshold) {
            const auto left =
                GridEditorService().removeLineNear(grid({0.5}, {0.75}), {x, y}, threshold);
            return std::pair(left.verticalSplits(), left.horizontalSplits());
        };
        // Just beyond the threshold in floating point, then exactly at it.
        QCOMPARE(removed(0.51, 0.3, 0.01), std::pair(Splits{0.5}, Splits{0.75}));
        QCOMPARE(removed(0.5078125, 0.3, 0.0078125), std::pair(Splits{}, Splits{0.75}));
        QCOMPARE(removed(0.625, 0.625, 0.2), std::pair(Splits{0.5}, Splits{}));
        QCOMPARE(removed(0.53, 0.6, 0.2), std::pair(Splits{}, Splits{0.75}));
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
    }
};

QTEST_APPLESS_MAIN(DisplayLayoutsTest)
#include "tst_display_layouts.moc"
