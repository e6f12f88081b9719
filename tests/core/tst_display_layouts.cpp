#include "core/layouts/display_identifier.h"
#include "core/layouts/display_layout_service.h"
#include "core/layouts/layout_cycle.h"

#include <QTest>

using namespace paneforge;

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

} // namespace

class DisplayLayoutsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stableIds_data() {
        QTest::addColumn<qint64>("vendor");
        QTest::addColumn<qint64>("product");
        QTest::addColumn<int>("serial"); // -1: none
        QTest::addColumn<QString>("stableId");
        QTest::newRow("with serial") << qint64(16) << qint64(2) << 7 << "v16-p2-s7";
        QTest::newRow("without serial") << qint64(16) << qint64(2) << -1 << "v16-p2-sno-serial";
        QTest::newRow("serial zero is a serial") << qint64(16) << qint64(2) << 0 << "v16-p2-s0";
        QTest::newRow("negative numbers") << qint64(-5) << qint64(2) << 1 << "v-5-p2-s1";
    }
    void stableIds() {
        QFETCH(qint64, vendor);
        QFETCH(qint64, product);
        QFETCH(int, serial);
        QFETCH(QString, stableId);
        const DisplayIdentifier id(vendor, product,
                                   serial < 0 ? std::nullopt : std::optional<std::int64_t>(serial));
        QCOMPARE(id.stableId(), stableId);
        QVERIFY(DisplayIdentifier::fromJson(id.toJson()) == id);
    }

    void staleOrMissingActiveLayout() {
        const auto config = PaneforgeConfig::makeDefault();
        const auto created = service().getOrCreateLayout(config, kDisplay);
        QCOMPARE(created.id(), QStringLiteral("display-v16-p2-s7"));
        QCOMPARE(created.name(), QStringLiteral("Default"));
        QCOMPARE(created.verticalSplits(), std::vector<double>{0.5});
        QVERIFY(config.displays().empty());

        const auto stale =
            configWith("gone", {layout("a", "A"), layout("b", "B"), layout("c", "C")});
        QVERIFY(!service().getActiveLayout(stale, kDisplay));
        QCOMPARE(service().getOrCreateLayout(stale, kDisplay).id(), QStringLiteral("a"));
        QCOMPARE(activeId(*service().cycleNext(stale, kDisplay)), QStringLiteral("a"));
        QCOMPARE(activeId(*service().cyclePrevious(stale, kDisplay)), QStringLiteral("c"));
        QVERIFY(!service().cycleNext(configWith("a", {layout("a", "A")}), kDisplay));
        QVERIFY(!service().cycleNext(PaneforgeConfig::makeDefault(), kDisplay));
    }

    void namesAreTrimmedAndCompareWithoutCase_data() {
        QTest::addColumn<QString>("existing");
        QTest::addColumn<QString>("saved");
        QTest::addColumn<bool>("duplicate");
        const auto row = [](const char* name, const char* existing, const char* saved, bool dup) {
            QTest::newRow(name) << QString::fromUtf8(existing) << QString::fromUtf8(saved) << dup;
        };
        row("ASCII", "Work", "work", true);
        row("German umlaut", "Ärger", "äRGER", true);
        row("Greek with final sigma", "ΣΊΣΥΦΟΣ", "σίσυφος", true);
        row("Cyrillic", "Работа", "  РАБОТА\n", true);
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
        QVERIFY(DisplayLayoutService::isUsableName(QStringLiteral(" a ")));
        QVERIFY(!DisplayLayoutService::isUsableName(QString::fromUtf8("\u2029 ")));

        const QString uuid = DisplayLayoutService::defaultLayoutIdMaker()();
        QCOMPARE(uuid.size(), 36);
        QCOMPARE(uuid, uuid.toUpper());
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

    // Stale steps: staleOrMissingActiveLayout and the layout switching test.
    void cyclingWraps() {
        const QStringList abc{"a", "b", "c"};
        QCOMPARE(LayoutCycle::wrappedId("c", abc, 1), std::optional<QString>("a"));
        QCOMPARE(LayoutCycle::wrappedId("a", abc, -7), std::optional<QString>("c"));
        QCOMPARE(LayoutCycle::wrappedId("a", {}, 1), std::nullopt);
        QCOMPARE(LayoutCycle::previousId("a", abc), std::optional<QString>("c"));
        QCOMPARE(LayoutCycle::nextId("a", {"a"}), std::nullopt); // one layout goes nowhere
    }

    void selectorRowsAndFocus() {
        const auto fallback =
            LayoutSelectorAssembler::itemsForDisplay({}, layout("f", "F"), QStringLiteral("f"));
        QCOMPARE(fallback, (std::vector<LayoutSelectorItem>{{"f", "F", true}}));
        const auto items = LayoutSelectorAssembler::items({layout("a", "A"), layout("a", "A2")},
                                                          QStringLiteral("a"));
        QVERIFY(items[0].isActive && items[1].isActive);
        // Wrapping with several cards is played by key in the selector's view test.
        QCOMPARE(LayoutSelectorFocus::initialIndex({false, true, true}), 1);
        QCOMPARE(LayoutSelectorFocus::nextIndex(0, 1), 0);
    }
};

QTEST_APPLESS_MAIN(DisplayLayoutsTest)
#include "tst_display_layouts.moc"
