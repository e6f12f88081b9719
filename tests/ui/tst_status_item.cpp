#include "ui/menu_bar_icon_renderer.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QTest>

using namespace paneforge;

namespace {

// A status item whose actions write their names into `called`; the displays are `displays`.
struct Menu {
    Menu() {
        const auto record = [this](const char* name) {
            return [this, name] { called << QString::fromUtf8(name); };
        };
        StatusMenuActions actions;
        actions.openLayoutSelector = record("openLayoutSelector");
        actions.nextLayout = record("nextLayout");
        actions.previousLayout = record("previousLayout");
        actions.moveToNextDisplay = record("moveToNextDisplay");
        actions.displays = [this] { return displays; };
        actions.openZoneEditorForDisplay = [this](DisplayId id) {
            called << QStringLiteral("zoneEditor %1").arg(id);
        };
        actions.openPreferences = record("openPreferences");
        actions.backupSettings = record("backupSettings");
        actions.restoreSettings = record("restoreSettings");
        actions.openQuickStart = record("openQuickStart");
        actions.revealLogFile = record("revealLogFile");
        actions.checkForUpdates = record("checkForUpdates");
        actions.openAbout = record("openAbout");
        actions.quit = record("quit");
        controller = std::make_unique<StatusItemController>(
            LoggerFactory::makeLogger(QStringLiteral("Test")), std::move(actions));
    }
    QAction* row(const QString& title) const {
        for (QAction* action : controller->menu().actions()) {
            if (action->text() == title) {
                return action;
            }
        }
        return nullptr;
    }
    // Opening the menu rebuilds the submenu.
    QList<QAction*> openSubmenu() {
        Q_EMIT controller->menu().aboutToShow();
        return controller->zoneEditorMenu().actions();
    }

    QStringList called;
    std::vector<StatusMenuDisplay> displays;
    std::unique_ptr<StatusItemController> controller;
};

} // namespace

class StatusItemTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void iconShape_data();
    void iconShape();
    void iconScalesWithTheSmallerSide();
    void menuRowsInOrder();
    void rowsCallTheirActions_data();
    void rowsCallTheirActions();
    void zoneEditorSubmenu_data();
    void zoneEditorSubmenu();
    void runsWithoutATray();
};

void StatusItemTest::iconShape_data() {
    // Pixels of the 22 x 22 icon in image coordinates (y down); the design grid is y up.
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<bool>("inked");
    QTest::newRow("left edge of the square") << QPoint(3, 11) << true;
    QTest::newRow("right edge of the square") << QPoint(19, 14) << true;
    QTest::newRow("top edge") << QPoint(7, 3) << true;
    QTest::newRow("vertical divider") << QPoint(11, 7) << true;
    QTest::newRow("right half divider") << QPoint(15, 11) << true;
    QTest::newRow("no divider in the left half") << QPoint(7, 11) << false;
    QTest::newRow("dot, lower left") << QPoint(7, 15) << true;
    QTest::newRow("no dot upper left") << QPoint(7, 7) << false;
    QTest::newRow("outside the square") << QPoint(0, 0) << false;
    QTest::newRow("upper right zone is empty") << QPoint(15, 7) << false;
}

void StatusItemTest::iconShape() {
    QFETCH(QPoint, pixel);
    QFETCH(bool, inked);
    const QImage image = MenuBarIconRenderer::makeTemplateImage({22, 22});
    const QColor color = image.pixelColor(pixel);
    QCOMPARE(color.alpha() > 128, inked);
    if (inked) {
        QCOMPARE(color.rgb() & 0xFFFFFF, QRgb(0));
    }
}

void StatusItemTest::iconScalesWithTheSmallerSide() {
    // 44 x 30: scale 30 / 22, drawn from the top-left corner.
    const QImage image = MenuBarIconRenderer::makeImage({44, 30}, Qt::red);
    const qreal s = 30.0 / 22.0;
    QVERIFY(image.pixelColor(qRound(11 * s), qRound(7 * s)).alpha() > 128);
    QCOMPARE(image.pixelColor(qRound(11 * s), qRound(7 * s)).red(), 255);
    QCOMPARE(image.pixelColor(40, 15).alpha(), 0);
}

void StatusItemTest::menuRowsInOrder() {
    Menu menu;
    QStringList rows;
    for (const QAction* action : menu.controller->menu().actions()) {
        rows << (action->isSeparator() ? QStringLiteral("---") : action->text());
    }
    QCOMPARE(rows, (QStringList{"Switch Layout…", "Next Layout", "Previous Layout",
                                "Move to Next Display", "Zone Editor…", "---", "Preferences…",
                                "Backup Settings…", "Restore Settings…", "---", "Quick Start…",
                                "Reveal Log File", "Check for Updates…", "About Paneforge", "---",
                                "Quit Paneforge"}));
    QCOMPARE(menu.row("Zone Editor…")->menu(), &menu.controller->zoneEditorMenu());
}

void StatusItemTest::rowsCallTheirActions_data() {
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("action");
    const QStringList pairs{
        "Switch Layout…",    "openLayoutSelector", "Next Layout",          "nextLayout",
        "Previous Layout",   "previousLayout",     "Move to Next Display", "moveToNextDisplay",
        "Preferences…",      "openPreferences",    "Backup Settings…",     "backupSettings",
        "Restore Settings…", "restoreSettings",    "Quick Start…",         "openQuickStart",
        "Reveal Log File",   "revealLogFile",      "Check for Updates…",   "checkForUpdates",
        "About Paneforge",   "openAbout",          "Quit Paneforge",       "quit"};
    for (int i = 0; i < pairs.size(); i += 2) {
        QTest::newRow(qPrintable(pairs[i])) << pairs[i] << pairs[i + 1];
    }
}

void StatusItemTest::rowsCallTheirActions() {
    QFETCH(QString, title);
    QFETCH(QString, action);
    Menu menu;
    QAction* row = menu.row(title);
    QVERIFY(row);
    row->trigger();
    QCOMPARE(menu.called, QStringList{action});
}

void StatusItemTest::zoneEditorSubmenu_data() {
    QTest::addColumn<int>("displayCount");
    QTest::newRow("no displays") << 0;
    QTest::newRow("two displays") << 2;
}

void StatusItemTest::zoneEditorSubmenu() {
    QFETCH(int, displayCount);
    Menu menu;
    for (int i = 0; i < displayCount; ++i) {
        // The second id is beyond a signed 32-bit number: it must come back unchanged.
        const DisplayId id = i == 0 ? 69733378u : 0xFFFFFFF0u;
        menu.displays.push_back(
            {id, QStringLiteral("Display %1").arg(i), DisplayIdentifier(1, 2, std::nullopt)});
    }
    const QList<QAction*> items = menu.openSubmenu();
    if (displayCount == 0) {
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.front()->text(), QStringLiteral("No Displays"));
        QVERIFY(!items.front()->isEnabled());
        return;
    }
    QCOMPARE(items.size(), displayCount);
    QCOMPARE(items[1]->text(), QStringLiteral("Display 1"));
    items[1]->trigger();
    items[0]->trigger();
    QCOMPARE(menu.called, (QStringList{"zoneEditor 4294967280", "zoneEditor 69733378"}));
    // A display removed since: the next opening lists only what is there.
    menu.displays.pop_back();
    QCOMPARE(menu.openSubmenu().size(), displayCount - 1);
}

void StatusItemTest::runsWithoutATray() {
    Menu menu;
    StatusItemController& controller = *menu.controller;
    // The offscreen platform has no tray host.
    QCOMPARE(controller.configureStatusItem(), false);
    QCOMPARE(controller.statusItem().toolTip(), QStringLiteral("Paneforge"));
    QVERIFY(!controller.statusItem().icon().isNull());
    QCOMPARE(controller.statusItem().contextMenu(), &controller.menu());
}

QTEST_MAIN(StatusItemTest)
#include "tst_status_item.moc"
