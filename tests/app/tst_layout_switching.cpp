#include "app/switching/layout_selector_controller.h"
#include "layout_switch_fakes.h"
#include "manual_scheduler.h"
#include "snap_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {

const DesktopRect kVisibleFrame{0, 0, 1440, 875};

// One display under the pointer, the settings file in a temporary folder, the layout windows as
// records and the manual clock.
struct Switching {
    explicit Switching(const QStringList& layoutNames) {
        desk.addScreen(1, {0, 0, 1440, 900}, kVisibleFrame);
        desk.pointer = {700, 400};
        std::vector<GridDefinition> layouts;
        for (int i = 0; i < layoutNames.size(); ++i) {
            layouts.emplace_back(QStringLiteral("L%1").arg(i), layoutNames[i],
                                 std::vector<double>{0.5}, std::vector<double>{});
        }
        PaneforgeConfig config = PaneforgeConfig::makeDefault();
        if (!layouts.empty()) {
            DisplayLayoutsMap displays;
            displays.insert_or_assign(stableId(), DisplayLayouts(layouts.front().id(), layouts));
            config = config.copying(displays);
        }
        store.saveConfig(config);
    }
    QByteArray file() const { return ConfigStore::encodeConfig(store.loadConfig()); }
    static QString stableId() { return fakes::Desk::identifierFor(1).stableId(); }
    QString activeId() const {
        const auto active = DisplayLayoutService().getActiveLayout(store.loadConfig(), stableId());
        return active ? active->id() : QString();
    }
    LayoutSwitchServices services() {
        return {store, desk, desk, screen, [this](const QString& line) { log << line; }};
    }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    fakes::Desk desk;
    fakes::LayoutSwitchScreen screen;
    ManualScheduler scheduler;
    QStringList log;
    LayoutCycleHUDController hud{screen, scheduler};
    LayoutCycleController cycle{services(), hud};
    LayoutSelectorController selector{services()};
};

} // namespace

class LayoutSwitchingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cycling_data();
    void cycling();
    void rapidCyclingShowsOneHUDAndHidesASecondAfterTheLast();
    void theHUDCanBeDismissedEarly();
    void selectorShowsTheDisplaysLayouts_data();
    void selectorShowsTheDisplaysLayouts();
    void pickingSavesAndClosing();
};

void LayoutSwitchingTest::cycling_data() {
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("forward");
    QTest::addColumn<QString>("active"); // empty: nothing happens
    QTest::addColumn<QString>("shown");
    QTest::newRow("next") << QStringList{"A", "B", "C"} << true << "L1"
                          << "B";
    QTest::newRow("previous wraps") << QStringList{"A", "B", "C"} << false << "L2"
                                    << "C";
    QTest::newRow("blank name") << QStringList{"A", " \n "} << true << "L1"
                                << "Untitled";
    QTest::newRow("name kept untrimmed") << QStringList{"A", " Home "} << true << "L1"
                                         << " Home ";
    QTest::newRow("one layout") << QStringList{"A"} << true << ""
                                << "";
    QTest::newRow("no entry") << QStringList{} << false << ""
                              << "";
}

void LayoutSwitchingTest::cycling() {
    QFETCH(QStringList, names);
    QFETCH(bool, forward);
    QFETCH(QString, active);
    QFETCH(QString, shown);
    Switching s(names);
    const QByteArray before = s.file();
    forward ? s.cycle.cycleNext() : s.cycle.cyclePrevious();
    if (active.isEmpty()) {
        QCOMPARE(s.file(), before);
        QVERIFY(!s.screen.hud);
        return;
    }
    QCOMPARE(s.activeId(), active);
    QVERIFY(s.screen.hud);
    QCOMPARE(s.screen.hud->name, shown);
    QCOMPARE(s.screen.hud->frame, kVisibleFrame);
}

void LayoutSwitchingTest::rapidCyclingShowsOneHUDAndHidesASecondAfterTheLast() {
    Switching s({"A", "B", "C", "D"});
    for (int press = 0; press < 3; ++press) {
        s.cycle.cycleNext();
        s.scheduler.advance(0.25);
    }
    QCOMPARE(s.screen.hudsShown, 3);
    QCOMPARE(s.screen.hud->name, QStringLiteral("D"));
    s.scheduler.advance(0.74); // 0.99 s after the third press
    QVERIFY(s.hud.isShowing());
    s.scheduler.advance(0.01);
    QVERIFY(!s.hud.isShowing());
    QVERIFY(!s.screen.hud);
}

void LayoutSwitchingTest::theHUDCanBeDismissedEarly() {
    Switching s({"A", "B"});
    s.cycle.cycleNext();
    const auto dismiss = s.screen.hud->dismiss;
    dismiss(); // Escape or a click
    QVERIFY(!s.screen.hud);
    s.scheduler.advance(2);
    dismiss();
    QVERIFY(!s.hud.isShowing());
}

void LayoutSwitchingTest::selectorShowsTheDisplaysLayouts_data() {
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("cards");
    QTest::newRow("five") << QStringList{"A", "B", "C", "D", "E"} << 5;
    QTest::newRow("none: one saved first") << QStringList{} << 1;
}

void LayoutSwitchingTest::selectorShowsTheDisplaysLayouts() {
    QFETCH(QStringList, names);
    QFETCH(int, cards);
    Switching s(names);
    s.selector.showForPointerDisplay();
    QVERIFY(s.screen.selector);
    const LayoutSelectorContent& content = s.screen.selector->content;
    QCOMPARE(int(content.items.size()), cards);
    QCOMPARE(int(content.layouts.size()), cards);
    QCOMPARE(s.screen.selector->frame, kVisibleFrame);
    // The active layout is marked, and it is the one in the file.
    QVERIFY(content.items.front().isActive);
    QCOMPARE(s.activeId(), content.items.front().id);
    QCOMPARE(content.layouts.front().id(), content.items.front().id);
}

void LayoutSwitchingTest::pickingSavesAndClosing() {
    Switching s({"A", "B", "C"});
    const QByteArray before = s.file();
    s.selector.showForPointerDisplay();
    s.screen.selector->dismiss(); // Escape or a click on the backdrop
    QVERIFY(!s.screen.selector);
    s.selector.showForPointerDisplay();
    s.screen.pick(QStringLiteral("not-this-display's"));
    QVERIFY(!s.screen.selector);
    QCOMPARE(s.file(), before);
    QVERIFY2(s.log.last().startsWith(QStringLiteral("LayoutSelectorController.pick failed: ")),
             qPrintable(s.log.join('\n')));

    s.selector.showForPointerDisplay();
    s.screen.pick(QStringLiteral("L2"));
    QVERIFY(!s.screen.selector);
    QVERIFY(!s.selector.isShowing());
    QCOMPARE(s.activeId(), QStringLiteral("L2"));
}

QTEST_GUILESS_MAIN(LayoutSwitchingTest)
#include "tst_layout_switching.moc"
