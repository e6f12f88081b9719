// The zone editor: its model over a frame, driven as the editor window drives it, and its
// controller over the configuration file, the displays and fake editor windows.

#include "app/editor/grid_editor_controller.h"
#include "app/editor/grid_editor_model.h"
#include "config_fixtures.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

using Splits = std::vector<double>;
Q_DECLARE_METATYPE(Splits)
Q_DECLARE_METATYPE(EditorKey)

namespace {

// An editor over a 1440 x 900 frame that records what it saves.
struct Editor {
    Editor(Splits vertical, Splits horizontal)
        : model(GridDefinition(QStringLiteral("g"), QStringLiteral("Mine"), std::move(vertical),
                               std::move(horizontal)),
                DesktopRect(0, 0, 1440, 900), 0.0, actions(), scheduler) {}
    GridEditorActions actions() {
        GridEditorActions actions;
        actions.onSave = [this](const GridDefinition& grid) { calls << "save " + grid.name(); };
        return actions;
    }
    ManualScheduler scheduler;
    QStringList calls;
    GridEditorModel model;
};

// Two displays, the first with layouts of these names; editor windows and alerts as records.
struct Editing {
    explicit Editing(const QStringList& names) {
        desk.addScreen(1, {0, 0, 1440, 900}, {0, 0, 1440, 875});
        desk.addScreen(2, {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080});
        desk.pointer = {700, 400};
        alerts.journal = [this](const QString& line) { questions << line; };
        store.saveConfig(fixtures::withLayouts(stableId(), names));
    }
    static QString stableId() { return fakes::Desk::identifierFor(1).stableId(); }
    QString layouts() const { return fixtures::layoutsOf(store.loadConfig(), stableId()); }
    GridEditorModel& editor() { return *windows.made.back()->model; }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    fakes::Desk desk;
    fakes::EditorWindows windows;
    fakes::Alerts alerts;
    ManualScheduler scheduler;
    QStringList questions;
    GridEditorController controller{
        GridEditorServices{store, desk, desk, windows, alerts, scheduler, [](const QString&) {}}};
};

} // namespace

// Drawing, removing and naming lines, saving with Return and closing with Escape through the
// real agent: agent_snapping, agent_shell.
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
        const auto row = [](const char* name, Splits v, Splits h, QPointF press, QPointF release,
                            Splits ev, Splits eh) {
            QTest::newRow(name) << v << h << press << release << ev << eh;
        };
        row("0.012 from a line picks it up", {0.5}, {}, {0.512, 0.3}, {0.7, 0.3}, {0.7}, {});
        row("0.016 away adds a line", {0.5}, {}, {0.516, 0.3}, {0.516, 0.3}, {0.5}, {0.3});
        row("a tie picks the horizontal line", {0.5}, {0.5}, {0.51, 0.51}, {0.2, 0.2}, {0.5},
            {0.2});
        row("near-duplicates go together", {0.5, 0.50005}, {}, {0.5, 0.5}, {0.8, 0.5}, {0.8}, {});
        row("a click on a line puts it back", {0.5}, {}, {0.51, 0.3}, {0.51, 0.3}, {0.51}, {});
        row("a release outside changes nothing", {0.5}, {}, {0.3, 0.3}, {-1, -1}, {0.5}, {});
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
        const auto at =
            inside ? std::optional(NormalizedPoint{release.x(), release.y()}) : std::nullopt;
        editor.model.primaryPressed(NormalizedPoint{press.x(), press.y()}, false);
        editor.model.primaryDragged(at, false);
        editor.model.primaryReleased(at);
        QCOMPARE(editor.model.grid().verticalSplits(), expectedVertical);
        QCOMPARE(editor.model.grid().horizontalSplits(), expectedHorizontal);
        // Outside, the pending line is still held, ready for a release inside.
        QCOMPARE(editor.model.pendingSplit().has_value(), !inside);
    }

    void shiftTurnsThePendingLineLive() {
        Editor editor({}, {});
        editor.model.primaryPressed(NormalizedPoint{0.3, 0.6}, true);
        editor.model.shiftChanged(false);
        QCOMPARE(*editor.model.pendingSplit(),
                 (PendingSplit{GridLineOrientation::Horizontal, 0.6}));
        editor.model.primaryDragged(NormalizedPoint{0.4, 0.7}, true);
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
        // The flash shows the line in red, even once it is gone, for a moment.
        QCOMPARE(editor.model.lineStyle(GridLineOrientation::Vertical, 0.5) ==
                     EditorLineStyle::Flash,
                 flashes);
        editor.scheduler.advance(1);
        QVERIFY(!editor.model.flashSplit());
    }

    void keys_data() {
        QTest::addColumn<EditorKey>("key");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("handled");
        QTest::addColumn<QString>("call"); // empty: none
        QTest::newRow("keypad Enter") << EditorKey::KeypadEnter << "Desk" << true << "save Desk";
        QTest::newRow("Return, blank name") << EditorKey::Return << " \t" << true << "";
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
        QCOMPARE(editor.model.lines().back(),
                 (EditorLine{GridLineOrientation::Horizontal, 0.75, EditorLineStyle::Active}));
        editor.model.primaryReleased(NormalizedPoint{0.2, 0.75});
        editor.model.pointerMoved(NormalizedPoint{0.505, 0.5});
        QCOMPARE(editor.model.lineStyle(GridLineOrientation::Vertical, 0.5),
                 EditorLineStyle::Hover);
        // Six zones in points, the top-left one a quarter of 900 high.
        const auto zones = editor.model.zones();
        QCOMPARE(zones.size(), std::size_t{6});
        QCOMPARE(zones.front().label, QStringLiteral("720 \u00D7 225"));
    }

    void openingAgainLeavesOneWindow() {
        Editing editing({"A", "B"});
        editing.controller.showEditorForMainDisplay();
        editing.controller.showEditor(2);
        QCOMPARE(editing.windows.open().size(), std::size_t{1});
        // The first one goes once the call that closed it has returned.
        QVERIFY(editing.windows.made.front()->closed && !editing.windows.made.front()->destroyed);
        editing.scheduler.runPosted();
        QVERIFY(editing.windows.made.front()->destroyed);
    }

    void withoutScreensNothingOpens() {
        Editing editing({"A", "B"});
        editing.desk.screenList.clear();
        editing.controller.showEditorForMainDisplay();
        QVERIFY(editing.windows.made.empty());
    }

    void aDisplayWithoutLayoutsOffersTheCreatedOne() {
        Editing editing({});
        editing.controller.showEditor(1);
        QCOMPARE(editing.editor().layouts(), std::vector{editing.editor().grid()});
        QVERIFY(!editing.editor().canDelete());
    }

    void editsWriteTheConfiguration_data() {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("layouts"); // afterwards, the active one starred
        QTest::addColumn<QString>("edited");  // the layout in the editor afterwards
        const QStringList two{"A", "B"};
        QTest::newRow("save under a taken name") << two << "save B"
                                                 << "*A B"
                                                 << "B";
        QTest::newRow("save as new") << two << "new C"
                                     << "A B *C"
                                     << "C";
        QTest::newRow("select") << two << "select L1"
                                << "A *B"
                                << "B";
        QTest::newRow("delete, confirmed") << two << "delete yes"
                                           << "*B"
                                           << "B";
        QTest::newRow("delete, cancelled") << two << "delete no"
                                           << "*A B"
                                           << "A";
        QTest::newRow("delete the only layout") << QStringList{"A"} << "delete"
                                                << "*A"
                                                << "A";
    }
    void editsWriteTheConfiguration() {
        QFETCH(QStringList, stored);
        QFETCH(QString, action);
        QFETCH(QString, layouts);
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
            if (stored.size() > 1) {
                QCOMPARE(editing.questions,
                         QStringList{"confirm Delete \u201CA\u201D? This layout will be removed "
                                     "from this display. [Delete|Cancel]"});
                editing.alerts.answer(argument == "yes");
            }
        }
        QCOMPARE(editing.questions.isEmpty(), stored.size() == 1 || verb != "delete");
        QCOMPARE(editing.layouts(), layouts);
        // The editor stays open (closing on a save: agent_snapping).
        QCOMPARE(editing.windows.open().size(), std::size_t{1});
        QCOMPARE(editor.name(), edited);
        if (verb == "new") { // what is saved carries the edited lines
            const auto saved = DisplayLayoutService().getActiveLayout(editing.store.loadConfig(),
                                                                      editing.stableId());
            QCOMPARE(saved->verticalSplits().size(), std::size_t{2});
        }
    }
};

QTEST_GUILESS_MAIN(GridEditorTest)
#include "tst_grid_editor.moc"
