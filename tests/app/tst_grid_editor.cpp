// The zone editor: its model over a frame, driven as the editor window drives it, and its
// controller over the configuration file, the displays and fake editor windows.

#include "app/editor/grid_editor_controller.h"
#include "app/editor/grid_editor_model.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

using Splits = std::vector<double>;
Q_DECLARE_METATYPE(Splits)
Q_DECLARE_METATYPE(EditorKey)

namespace {

// An editor over a 1440 x 900 frame whose callbacks only record what they were given.
struct Editor {
    explicit Editor(Splits vertical, Splits horizontal,
                    const QString& name = QStringLiteral("Mine"))
        : model(
              GridDefinition(QStringLiteral("g"), name, std::move(vertical), std::move(horizontal)),
              DesktopRect(0, 0, 1440, 900), 0.0, actions(), scheduler) {}

    GridEditorActions actions() {
        GridEditorActions result;
        result.onCancel = [this] { calls << QStringLiteral("cancel"); };
        result.onSave = [this](const GridDefinition& grid) {
            calls << QStringLiteral("save ") + grid.name();
        };
        result.onSelectLayout = [](const QString& id) -> std::optional<GridDefinition> {
            if (id == QLatin1String("other")) {
                return GridDefinition(id, QStringLiteral("Other"), {0.25}, {});
            }
            return std::nullopt;
        };
        return result;
    }
    // Without Shift (with it: shiftTurnsThePendingLineLive).
    void dragAndRelease(NormalizedPoint press, std::optional<NormalizedPoint> release) {
        model.primaryPressed(press, false);
        model.primaryDragged(release, false);
        model.primaryReleased(release);
    }

    ManualScheduler scheduler;
    QStringList calls;
    GridEditorModel model;
};

// Two displays, the settings file in a temporary folder, editor windows and alerts as records.
struct Editing {
    explicit Editing(int storedLayouts) {
        desk.addScreen(1, {0, 0, 1440, 900}, {0, 0, 1440, 875});
        desk.addScreen(2, {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080});
        desk.pointer = {700, 400};
        alerts.journal = [this](const QString& line) { questions << line; };
        std::vector<GridDefinition> layouts{
            GridDefinition(QStringLiteral("a"), QStringLiteral("A"), {0.5}, {}),
            GridDefinition(QStringLiteral("b"), QStringLiteral("B"), {}, {0.5})};
        layouts.resize(std::size_t(storedLayouts), layouts.front());
        PaneforgeConfig config = PaneforgeConfig::makeDefault();
        if (!layouts.empty()) {
            DisplayLayoutsMap displays;
            displays.insert_or_assign(stableId(), DisplayLayouts(QStringLiteral("a"), layouts));
            config = config.copying(displays);
        }
        store.saveConfig(config);
    }
    static QString stableId() { return fakes::Desk::identifierFor(1).stableId(); }
    QStringList storedNames() const {
        QStringList names;
        for (const auto& layout :
             DisplayLayoutService().listLayouts(store.loadConfig(), stableId())) {
            names << layout.name();
        }
        return names;
    }
    QString activeName() const {
        const auto active = DisplayLayoutService().getActiveLayout(store.loadConfig(), stableId());
        return active ? active->name() : QString();
    }
    GridEditorModel& editor() { return *windows.made.back()->model; }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    fakes::Desk desk;
    fakes::EditorWindows windows;
    fakes::Alerts alerts;
    ManualScheduler scheduler;
    QStringList log;
    QStringList questions;
    GridEditorController controller{
        GridEditorServices{store, desk, desk, windows, alerts, scheduler,
                           [this](const QString& line) { log << line; }}};
};

} // namespace

class GridEditorTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void pressDragRelease_data() {
        QTest::addColumn<Splits>("vertical");
        QTest::addColumn<Splits>("horizontal");
        QTest::addColumn<QPointF>("press");
        QTest::addColumn<QPointF>("release"); // negative: outside the frame
        QTest::addColumn<Splits>("expectedVertical");
        QTest::addColumn<Splits>("expectedHorizontal");
        QTest::newRow("0.012 from a line picks it up")
            << Splits{0.5} << Splits{} << QPointF(0.512, 0.3) << QPointF(0.7, 0.3) << Splits{0.7}
            << Splits{};
        QTest::newRow("0.016 away adds a horizontal line")
            << Splits{0.5} << Splits{} << QPointF(0.516, 0.3) << QPointF(0.516, 0.3) << Splits{0.5}
            << Splits{0.3};
        QTest::newRow("a tie picks the horizontal line")
            << Splits{0.5} << Splits{0.5} << QPointF(0.51, 0.51) << QPointF(0.2, 0.2) << Splits{0.5}
            << Splits{0.2};
        QTest::newRow("near-duplicates go together")
            << Splits{0.5, 0.50005} << Splits{} << QPointF(0.5, 0.5) << QPointF(0.8, 0.5)
            << Splits{0.8} << Splits{};
        QTest::newRow("a click on a line puts it back")
            << Splits{0.5} << Splits{} << QPointF(0.51, 0.3) << QPointF(0.51, 0.3) << Splits{0.51}
            << Splits{};
        QTest::newRow("a release outside changes nothing")
            << Splits{0.5} << Splits{} << QPointF(0.3, 0.3) << QPointF(-1, -1) << Splits{0.5}
            << Splits{};
    }
    void pressDragRelease() {
        QFETCH(Splits, vertical);
        QFETCH(Splits, horizontal);
        QFETCH(QPointF, press);
        QFETCH(QPointF, release);
        QFETCH(Splits, expectedVertical);
        QFETCH(Splits, expectedHorizontal);
        Editor editor(vertical, horizontal);
        const bool inside = release.x() >= 0;
        editor.dragAndRelease({press.x(), press.y()},
                              inside ? std::optional(NormalizedPoint{release.x(), release.y()})
                                     : std::nullopt);
        QCOMPARE(editor.model.grid().verticalSplits(), expectedVertical);
        QCOMPARE(editor.model.grid().horizontalSplits(), expectedHorizontal);
        // Outside, the pending line is still held, ready for a release inside.
        QCOMPARE(editor.model.pendingSplit().has_value(), !inside);
    }

    void shiftTurnsThePendingLineLive() {
        Editor editor({}, {});
        editor.model.primaryPressed(NormalizedPoint{0.3, 0.6}, true);
        QCOMPARE(*editor.model.pendingSplit(), (PendingSplit{GridLineOrientation::Vertical, 0.3}));
        editor.model.shiftChanged(false);
        QCOMPARE(*editor.model.pendingSplit(),
                 (PendingSplit{GridLineOrientation::Horizontal, 0.6}));
        editor.model.primaryDragged(NormalizedPoint{0.4, 0.7}, true);
        QCOMPARE(*editor.model.pendingSplit(), (PendingSplit{GridLineOrientation::Vertical, 0.4}));
        editor.model.primaryReleased(NormalizedPoint{0.4, 0.7});
        QCOMPARE(editor.model.grid().verticalSplits(), Splits{0.4});
    }

    void secondaryClick_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<bool>("flashes");
        QTest::addColumn<Splits>("left");
        QTest::newRow("0.012 flashes only") << 0.512 << true << Splits{0.5};
        QTest::newRow("0.008 removes") << 0.508 << true << Splits{};
        QTest::newRow("0.016 does nothing") << 0.516 << false << Splits{0.5};
    }
    void secondaryClick() {
        QFETCH(double, x);
        QFETCH(bool, flashes);
        QFETCH(Splits, left);
        Editor editor({0.5}, {});
        editor.model.secondaryClicked(NormalizedPoint{x, 0.3});
        QCOMPARE(editor.model.grid().verticalSplits(), left);
        QCOMPARE(editor.model.flashSplit().has_value(), flashes);
        // The flash shows the line in red, even once it is gone, for 0.15 s.
        QCOMPARE(editor.model.lineStyle(GridLineOrientation::Vertical, 0.5) ==
                     EditorLineStyle::Flash,
                 flashes);
        editor.scheduler.advance(0.149);
        QCOMPARE(editor.model.flashSplit().has_value(), flashes);
        editor.scheduler.advance(0.002);
        QVERIFY(!editor.model.flashSplit());
    }

    void keys_data() {
        QTest::addColumn<EditorKey>("key");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("handled");
        QTest::addColumn<QString>("call"); // empty: none
        QTest::newRow("Escape") << EditorKey::Escape << "" << true << "cancel";
        QTest::newRow("keypad Enter") << EditorKey::KeypadEnter << "Desk" << true << "save Desk";
        QTest::newRow("Return, blank name") << EditorKey::Return << " \t" << true << "";
        QTest::newRow("Enter, empty name") << EditorKey::KeypadEnter << "" << true << "";
        QTest::newRow("any other key") << EditorKey::Other << "Desk" << false << "";
    }
    void keys() {
        QFETCH(EditorKey, key);
        QFETCH(QString, name);
        QFETCH(bool, handled);
        QFETCH(QString, call);
        Editor editor({0.5}, {});
        editor.model.setName(name);
        QCOMPARE(editor.model.canSave(), !name.trimmed().isEmpty());
        QCOMPARE(editor.model.keyDown(key), handled);
        QCOMPARE(editor.calls, call.isEmpty() ? QStringList() : QStringList{call});
    }

    void linesAndZonesShowTheEdit() {
        Editor editor({0.5}, {0.25});
        editor.model.primaryPressed(NormalizedPoint{0.2, 0.75}, false);
        const std::vector<EditorLine> expected{
            {GridLineOrientation::Horizontal, 0.25, EditorLineStyle::Normal},
            {GridLineOrientation::Vertical, 0.5, EditorLineStyle::Normal},
            {GridLineOrientation::Horizontal, 0.75, EditorLineStyle::Active}};
        QCOMPARE(editor.model.lines(), expected);
        editor.model.primaryReleased(NormalizedPoint{0.2, 0.75});
        editor.model.pointerMoved(NormalizedPoint{0.505, 0.5});
        QCOMPARE(editor.model.lineStyle(GridLineOrientation::Vertical, 0.5),
                 EditorLineStyle::Hover);
        QCOMPARE(editor.model.lineStyle(GridLineOrientation::Horizontal, 0.25),
                 EditorLineStyle::Dim);
        // Six zones in points, the top-left one a quarter of 900 high.
        const auto zones = editor.model.zones();
        QCOMPARE(zones.size(), std::size_t{6});
        QCOMPARE(zones.front().label, QStringLiteral("720 \u00D7 225"));
    }

    void anotherLayoutOrAPresetReplacesTheLines() {
        Editor editor({0.5}, {});
        editor.model.setName(QStringLiteral("Renamed"));
        editor.model.applyPreset(LayoutPresetId::Grid2x2);
        QVERIFY(editor.model.editedGrid().hasSameContent(
            GridDefinition(QStringLiteral("g"), QStringLiteral("Renamed"), {0.5}, {0.5})));
        editor.model.selectLayout(QStringLiteral("gone"));
        QCOMPARE(editor.model.grid().id(), QStringLiteral("g"));
        editor.model.selectLayout(QStringLiteral("other"));
        QVERIFY(editor.model.editedGrid().hasSameContent(
            GridDefinition(QStringLiteral("other"), QStringLiteral("Other"), {0.25}, {})));
    }

    void openingAgainLeavesOneWindow() {
        Editing editing(2);
        editing.controller.showEditorForMainDisplay();
        editing.controller.showEditor(2);
        const auto open = editing.windows.open();
        QCOMPARE(open.size(), std::size_t{1});
        QCOMPARE(open.front()->model->visibleFrame(), DesktopRect(1440, 0, 1920, 1080));
        // The first one goes once the call that closed it has returned.
        QVERIFY(editing.windows.made.front()->closed && !editing.windows.made.front()->destroyed);
        editing.scheduler.runPosted();
        QVERIFY(editing.windows.made.front()->destroyed);
    }

    void withoutScreensNothingOpens() {
        Editing editing(2);
        editing.desk.screenList.clear();
        editing.controller.showEditorForMainDisplay();
        QVERIFY(editing.windows.made.empty());
        QVERIFY2(editing.log.last().endsWith(QStringLiteral("No active display")),
                 qPrintable(editing.log.join('\n')));
    }

    void aDisplayWithoutLayoutsOffersTheCreatedOne() {
        Editing editing(0);
        editing.controller.showEditor(1);
        const auto layouts = editing.editor().layouts();
        QCOMPARE(layouts.size(), std::size_t{1});
        QCOMPARE(layouts.front(), editing.editor().grid());
        QVERIFY(!editing.editor().canDelete());
    }

    void editsWriteTheConfiguration_data() {
        QTest::addColumn<int>("stored");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("active");
        QTest::addColumn<QString>("edited"); // the layout in the editor afterwards
        QTest::newRow("save under a taken name") << 2 << "save B" << QStringList{"A", "B"} << "A"
                                                 << "B";
        QTest::newRow("save as new") << 2 << "new C" << QStringList{"A", "B", "C"} << "C"
                                     << "C";
        QTest::newRow("select") << 2 << "select b" << QStringList{"A", "B"} << "B"
                                << "B";
        QTest::newRow("delete, confirmed") << 2 << "delete yes" << QStringList{"B"} << "B"
                                           << "B";
        QTest::newRow("delete, cancelled") << 2 << "delete no" << QStringList{"A", "B"} << "A"
                                           << "A";
        QTest::newRow("delete the only layout") << 1 << "delete" << QStringList{"A"} << "A"
                                                << "A";
    }
    void editsWriteTheConfiguration() {
        QFETCH(int, stored);
        QFETCH(QString, action);
        QFETCH(QStringList, names);
        QFETCH(QString, active);
        QFETCH(QString, edited);
        Editing editing(stored);
        editing.controller.showEditor(1);
        GridEditorModel& editor = editing.editor();
        const QString verb = action.section(' ', 0, 0);
        const QString argument = action.section(' ', 1);
        if (verb == "save" || verb == "new") {
            editor.applyPreset(LayoutPresetId::Columns3);
            editor.setName(argument);
            verb == "save" ? editor.ok() : editor.saveAsNew();
        } else if (verb == "select") {
            editor.selectLayout(argument);
        } else {
            editor.deleteLayout();
            if (stored > 1) {
                QCOMPARE(
                    editing.questions,
                    QStringList{"confirm Delete \u201CA\u201D? This layout will be removed from "
                                "this display. [Delete|Cancel]"});
                editing.alerts.answer(argument == "yes");
            }
        }
        if (stored == 1) {
            QVERIFY(editing.questions.isEmpty());
        }
        QCOMPARE(editing.storedNames(), names);
        QCOMPARE(editing.activeName(), active);
        // The editor stays open (closing on a save: agent_snapping).
        QCOMPARE(editing.windows.open().size(), std::size_t{1});
        QCOMPARE(editor.name(), edited);
        // What is saved carries the edited lines.
        if (verb == "new") {
            const auto saved = DisplayLayoutService().getActiveLayout(editing.store.loadConfig(),
                                                                      editing.stableId());
            QCOMPARE(saved->verticalSplits().size(), std::size_t{2});
        }
    }
};

QTEST_GUILESS_MAIN(GridEditorTest)
#include "tst_grid_editor.moc"
