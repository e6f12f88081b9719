
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

namespace {

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

// Drawing lines with and without Shift, removing one, naming and saving with Return, closing with
// Escape, through the real agent: agent_snapping, agent_shell.
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
        row("near-duplicates go together", {0.5, 0.50005}, {}, {0.5, 0.5}, {0.8, 0.5}, {0.8}, {});
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

    void secondaryClick_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<bool>("flashes");
        QTest::addColumn<Splits>("left");
        QTest::newRow("0.012 flashes only") << 0.512 << true << Splits{0.5};
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

    void keys() {
        Editor editor({0.5}, {});
        editor.model.setName(QStringLiteral(" \t"));
        QVERIFY(!editor.model.canSave());
        QVERIFY(editor.model.keyDown(EditorKey::Return)); // taken, but a blank name is not saved
        editor.model.setName(QStringLiteral("Desk"));
        QVERIFY(!editor.model.keyDown(EditorKey::Other));
        QVERIFY(editor.model.keyDown(EditorKey::KeypadEnter));
        QCOMPARE(editor.calls, QStringList{"save Desk"});
    }

    void linesAndZonesShowTheEdit() {
        Editor editor({0.5}, {0.25});
        editor.model.primaryPressed(NormalizedPoint{0.2, 0.75}, false);
        QCOMPARE(editor.model.lines().back(),
                 (EditorLine{GridLineOrientation::Horizontal, 0.75, EditorLineStyle::Active}));
        editor.model.primaryReleased(NormalizedPoint{0.2, 0.75});
        // Six zones in points, the top-left one a quarter of 900 high.
        const auto zones = editor.model.zones();
        QCOMPARE(zones.size(), std::size_t{6});
        QCOMPARE(zones.front().label, QStringLiteral("720 \u00D7 225"));
    }

    void opensOneEditorOnADisplay() {
        Editing editing({});
        editing.controller.showEditorForMainDisplay();
        editing.controller.showEditor(2);
        QCOMPARE(editing.windows.open().size(), std::size_t{1});
        // The first one goes once the call that closed it has returned.
        QVERIFY(editing.windows.made.front()->closed && !editing.windows.made.front()->destroyed);
        editing.scheduler.runPosted();
        QVERIFY(editing.windows.made.front()->destroyed);
        editing.controller.showEditor(1); // no layouts: it offers the one made for it
        QCOMPARE(editing.editor().layouts(), std::vector{editing.editor().grid()});
        QVERIFY(!editing.editor().canDelete());
        editing.desk.screenList.clear();
        editing.controller.showEditorForMainDisplay(); // no screen: nothing opens
        QCOMPARE(editing.windows.made.size(), std::size_t{3});
    }

    void editsWriteTheConfiguration_data() {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("layouts"); // afterwards, the active one starred
        QTest::addColumn<QString>("edited");  // the layout in the editor afterwards
        const auto row = [](const char* name, QStringList stored, const char* action,
                            const char* layouts, const char* edited) {
            QTest::newRow(name) << stored << action << layouts << edited;
        };
        row("save under a taken name", {"A", "B"}, "save B", "*A B", "B");
        row("save as new", {"A", "B"}, "new C", "A B *C", "C");
        row("select", {"A", "B"}, "select L1", "A *B", "B");
        row("delete, confirmed", {"A", "B"}, "delete yes", "*B", "B");
        row("delete, cancelled", {"A", "B"}, "delete no", "*A B", "A");
        row("delete the only layout", {"A"}, "delete", "*A", "A");
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
