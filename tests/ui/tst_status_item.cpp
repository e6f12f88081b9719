#include "ui/menu_bar_icon_renderer.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QTest>

using namespace paneforge;

namespace {

using M = StatusMenuActions;
// Every row's action, in the menu's order.
const std::vector<std::function<void()> M::*> kRowActions{
    &M::openLayoutSelector, &M::nextLayout,      &M::previousLayout,  &M::moveToNextDisplay,
    &M::openPreferences,    &M::backupSettings,  &M::restoreSettings, &M::openQuickStart,
    &M::revealLogFile,      &M::checkForUpdates, &M::openAbout,       &M::quit};

// A status item whose row actions write their index into `called`, over the displays `displays`.
struct Menu {
    Menu() {
        StatusMenuActions actions;
        for (int i = 0; i < int(kRowActions.size()); ++i) {
            actions.*kRowActions[std::size_t(i)] = [this, i] { called << i; };
        }
        actions.displays = [this] { return displays; };
        actions.openZoneEditorForDisplay = [this](DisplayId id) { editorFor << id; };
        controller = std::make_unique<StatusItemController>(
            LoggerFactory::makeLogger(QStringLiteral("Test")), std::move(actions));
    }
    // Opening the menu rebuilds the submenu.
    QList<QAction*> openSubmenu() {
        Q_EMIT controller->menu().aboutToShow();
        return controller->zoneEditorMenu().actions();
    }

    QList<int> called;
    QList<DisplayId> editorFor;
    std::vector<StatusMenuDisplay> displays;
    std::unique_ptr<StatusItemController> controller;
};

} // namespace

class StatusItemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void iconShape_data() {
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
    void iconShape() {
        QFETCH(QPoint, pixel);
        QFETCH(bool, inked);
        const QColor color = MenuBarIconRenderer::makeTemplateImage({22, 22}).pixelColor(pixel);
        QCOMPARE(color.alpha() > 128, inked);
        QVERIFY(!inked || (color.rgb() & 0xFFFFFF) == 0);
    }

    void iconScalesWithTheSmallerSide() {
        // 44 x 30: scale 30 / 22, drawn from the top-left corner.
        const QImage image = MenuBarIconRenderer::makeImage({44, 30}, Qt::red);
        const QColor divider = image.pixelColor(qRound(11 * 30 / 22.0), qRound(7 * 30 / 22.0));
        QVERIFY(divider.alpha() > 128);
        QCOMPARE(divider.red(), 255);
        QCOMPARE(image.pixelColor(40, 15).alpha(), 0);
    }

    void rowsInOrderCallTheirActions() {
        Menu menu;
        QStringList rows;
        for (QAction* action : menu.controller->menu().actions()) {
            rows << (action->isSeparator() ? QStringLiteral("---") : action->text());
            if (!action->isSeparator() && !action->menu()) {
                action->trigger();
            }
        }
        QCOMPARE(rows, (QStringList{"Switch Layout…", "Next Layout", "Previous Layout",
                                    "Move to Next Display", "Zone Editor…", "---", "Preferences…",
                                    "Backup Settings…", "Restore Settings…", "---", "Quick Start…",
                                    "Reveal Log File", "Check for Updates…", "About Paneforge",
                                    "---", "Quit Paneforge"}));
        QCOMPARE(menu.called, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
        QCOMPARE(menu.controller->menu().actions()[4]->menu(), &menu.controller->zoneEditorMenu());
    }

    void zoneEditorSubmenu_data() {
        QTest::addColumn<int>("displayCount");
        QTest::newRow("no displays") << 0;
        QTest::newRow("two displays") << 2;
    }
    void zoneEditorSubmenu() {
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
        QCOMPARE(menu.editorFor, (QList<DisplayId>{0xFFFFFFF0u, 69733378u}));
        // A display removed since: the next opening lists only what is there.
        menu.displays.pop_back();
        QCOMPARE(menu.openSubmenu().size(), displayCount - 1);
    }

    void runsWithoutATray() {
        Menu menu;
        StatusItemController& controller = *menu.controller;
        // The offscreen platform has no tray host.
        QCOMPARE(controller.configureStatusItem(), false);
        QVERIFY(!controller.statusItem().icon().isNull());
        QCOMPARE(controller.statusItem().contextMenu(), &controller.menu());
    }
};

QTEST_MAIN(StatusItemTest)
#include "tst_status_item.moc"
