#include "app/editor/grid_editor_controller.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {

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

class GridEditorControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
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
        QTest::addColumn<QString>("edited"); // empty: the editor closed
        QTest::newRow("save") << 2 << "save A2" << QStringList{"A2", "B"} << "A2"
                              << "";
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
        QCOMPARE(editing.windows.open().size(), std::size_t(edited.isEmpty() ? 0 : 1));
        if (!edited.isEmpty()) {
            QCOMPARE(editor.name(), edited);
        }
        // What is saved carries the edited lines.
        if (verb == "new" || (verb == "save" && edited.isEmpty())) {
            const auto saved = DisplayLayoutService().getActiveLayout(editing.store.loadConfig(),
                                                                      editing.stableId());
            QCOMPARE(saved->verticalSplits().size(), std::size_t{2});
        }
    }
};

QTEST_GUILESS_MAIN(GridEditorControllerTest)
#include "tst_grid_editor_controller.moc"
