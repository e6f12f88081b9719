#include "app/switching/layout_selector_controller.h"
#include "config_fixtures.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace paneforge;

namespace {

const DesktopRect kVisibleFrame{0, 0, 1440, 875};

struct Switching {
    explicit Switching(const QStringList& names) {
        desk.addScreen(1, {0, 0, 1440, 900}, kVisibleFrame);
        desk.pointer = {700, 400};
        store.saveConfig(fixtures::withLayouts(stableId(), names));
    }
    QByteArray file() const { return ConfigStore::encodeConfig(store.loadConfig()); }
    static QString stableId() { return fakes::Desk::identifierFor(1).stableId(); }
    QString layouts() const { return fixtures::layoutsOf(store.loadConfig(), stableId()); }
    LayoutSwitchServices services() {
        return {store, desk, desk, screen, [](const QString&) {}};
    }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    fakes::Desk desk;
    fakes::LayoutSwitchScreen screen;
    ManualScheduler scheduler;
    LayoutCycleHUDController hud{screen, scheduler};
    LayoutCycleController cycle{services(), hud};
    LayoutSelectorController selector{services()};
};

} // namespace

// The next-layout hot key, the heads-up display leaving, the selector saving a layout first,
// picking and closing: agent_snapping, agent_shell.
class LayoutSwitchingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cyclingBack_data() {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("layouts"); // afterwards, the active one starred
        QTest::addColumn<QString>("shown");   // empty: nothing happens
        const auto row = [](const char* name, QStringList names, const char* layouts,
                            const char* shown) {
            QTest::newRow(name) << names << layouts << shown;
        };
        row("wraps round", {"A", "B", "C"}, "A B *C", "C");
        row("blank name", {"A", " "}, "A * ", "Untitled");
        row("one layout", {"A"}, "*A", "");
        row("no entry", {}, "", "");
    }
    void cyclingBack() {
        QFETCH(QStringList, names);
        QFETCH(QString, layouts);
        QFETCH(QString, shown);
        Switching s(names);
        s.cycle.cyclePrevious();
        QCOMPARE(s.layouts(), layouts);
        QCOMPARE(s.screen.hud.has_value(), !shown.isEmpty());
        if (s.screen.hud) {
            QCOMPARE(s.screen.hud->name, shown);
            QCOMPARE(s.screen.hud->frame, kVisibleFrame);
        }
    }

    void rapidCyclingShowsOneHUDAndHidesASecondAfterTheLast() {
        Switching s({"A", "B", "C", "D"});
        for (int press = 0; press < 3; ++press) {
            s.cycle.cycleNext();
            s.scheduler.advance(0.25);
        }
        QCOMPARE(s.screen.hud->name, QStringLiteral("D"));
        s.scheduler.advance(0.74); // 0.99 s after the third press
        QVERIFY(s.hud.isShowing());
        const auto dismiss = s.screen.hud->dismiss;
        s.scheduler.advance(0.01);
        QVERIFY(!s.screen.hud);
        dismiss(); // a late Escape or click: nothing happens
        QVERIFY(!s.hud.isShowing());
    }

    void selectorShowsTheDisplaysLayoutsAndPicksOnlyThem() {
        Switching s({"A", "B", "C", "D", "E"});
        const QByteArray before = s.file();
        s.selector.showForPointerDisplay();
        const LayoutSelectorContent& content = s.screen.selector->content;
        QCOMPARE(int(content.items.size()), 5);
        QCOMPARE(s.screen.selector->frame, kVisibleFrame);
        QVERIFY(content.items.front().isActive);
        s.screen.pick(QStringLiteral("not-this-display's"));
        QVERIFY(!s.screen.selector);
        QCOMPARE(s.file(), before);
    }
};

QTEST_GUILESS_MAIN(LayoutSwitchingTest)
#include "tst_layout_switching.moc"
