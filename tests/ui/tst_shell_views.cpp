// The shell's views on the offscreen platform: the tray menu's rows, the quick start guide's pages,
// the permission coach, the layout selector's panel and the heads-up display. End to end instead:
// running without a tray host, the rows a session walks to, the guide's and the selector's keys,
// and the heads-up display leaving the keyboard alone (agent_shell, agent_onboarding,
// agent_snapping); the tray icon's shape against its design: tst_packaging.

#include "app/onboarding/quick_start_controller.h"
#include "platform_fakes.h"
#include "ui/layout_card_painter.h"
#include "ui/layout_switch_views.h"
#include "ui/onboarding/permission_coach_window.h"
#include "ui/onboarding/quick_start_window.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
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

// The visible, enabled buttons by their titles; * marks the one Return presses.
QStringList usableButtons(QWidget& window) {
    QStringList titles;
    for (const auto* button : window.findChildren<QPushButton*>()) {
        if (button->isVisible() && button->isEnabled()) {
            titles << button->text() + (button->isDefault() ? QStringLiteral("*") : QString());
        }
    }
    return titles;
}

LayoutSelectorContent content(int count, int active) {
    LayoutSelectorContent content;
    for (int i = 0; i < count; ++i) {
        content.items.push_back(
            {QStringLiteral("L%1").arg(i), QStringLiteral("Layout %1").arg(i), i == active});
        content.layouts.emplace_back(content.items.back().id, content.items.back().name,
                                     std::vector<double>{0.5}, std::vector<double>{0.5});
    }
    return content;
}

struct Selector {
    Selector(int count, int active)
        : view(
              content(count, active), [this](const QString& id) { picked = id; },
              [this] { dismissed = true; }) {}
    QString picked;
    bool dismissed = false;
    LayoutSelectorView view;
};

template <typename View> View* shown() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* view = dynamic_cast<View*>(widget); view && view->isVisible()) {
            return view;
        }
    }
    return nullptr;
}

bool near(QColor a, QColor b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
               std::abs(a.blue() - b.blue()) <
           24;
}

// How many pixels of `area` are close to `color`.
int pixelsLike(const QImage& image, const QRect& area, const QColor& color) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            count += near(image.pixelColor(x, y), color) ? 1 : 0;
        }
    }
    return count;
}

} // namespace

class ShellViewsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    void zoneEditorSubmenuFollowsTheDisplays() {
        Menu menu;
        // The second id is beyond a signed 32-bit number: it must come back unchanged.
        for (const DisplayId id : {69733378u, 0xFFFFFFF0u}) {
            menu.displays.push_back(
                {id, QString::number(id), DisplayIdentifier(1, 2, std::nullopt)});
        }
        const QList<QAction*> items = menu.openSubmenu();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[1]->text(), QStringLiteral("4294967280"));
        items[1]->trigger();
        items[0]->trigger();
        QCOMPARE(menu.editorFor, (QList<DisplayId>{0xFFFFFFF0u, 69733378u}));
        // Displays removed since: the next opening lists only what is there.
        menu.displays.clear();
        const QList<QAction*> none = menu.openSubmenu();
        QCOMPARE(none.size(), 1);
        QCOMPARE(none.front()->text(), QStringLiteral("No Displays"));
        QVERIFY(!none.front()->isEnabled());
    }

    void quickStartShowsEachPagesChrome_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("step");
        QTest::addColumn<QStringList>("buttons");
        QTest::newRow("welcome") << 0 << "1 of 3" << QStringList{"Skip", "Next*"};
        QTest::newRow("layout") << 1 << "2 of 3"
                                << QStringList{"Open Zone Editor", "Skip", "Back", "Next*"};
        QTest::newRow("snap") << 2 << "3 of 3" << QStringList{"Skip", "Back", "Done*"};
    }
    void quickStartShowsEachPagesChrome() {
        QFETCH(int, index);
        QFETCH(QString, step);
        fakes::NativeWindowsRecord native;
        QuickStartWindow window(native, QuickStartActions{});
        window.showPage(QuickStartController::chrome(index));
        window.present();
        QStringList labels;
        for (const auto* label : window.findChildren<QLabel*>()) {
            labels << label->text();
        }
        QVERIFY2(labels.contains(step), qPrintable(labels.join(QLatin1Char('|'))));
        QTEST(usableButtons(window), "buttons");
    }

    void coachTakesItsContentAndStaysPut() {
        fakes::NativeWindowsRecord native;
        int presses = 0;
        PermissionCoachWindow coach(native, [&] { ++presses; });
        coach.present({"Permissions needed", "Message", "Open Accessibility"});
        coach.move(coach.pos() + QPoint(40, 30));
        const QPoint moved = coach.pos();
        coach.present({"Permissions needed", "Other", "Open Input Monitoring"});
        QCOMPARE(coach.pos(), moved);
        QCOMPARE(native.activated.size(), std::size_t{1});
        QCOMPARE(usableButtons(coach), QStringList{"Open Input Monitoring*"});
        coach.findChild<QPushButton*>()->click();
        QCOMPARE(presses, 1);
    }

    void panelFitsItsCards() {
        Selector selector(5, 0);
        // The last card ends where the panel's inset begins.
        QCOMPARE(LayoutSelectorModel::cardFrame(4).right(), selector.view.width() - 16.0);
    }

    void keysMoveTheFocusAndPick_data() {
        QTest::addColumn<int>("active");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("focus");
        QTest::addColumn<QString>("picked");
        QTest::newRow("right on the last wraps") << 4 << int(Qt::Key_Right) << 0 << "";
        QTest::newRow("left on the first wraps") << -1 << int(Qt::Key_Left) << 4 << "";
        QTest::newRow("shift-tab") << 2 << int(Qt::Key_Backtab) << 1 << "";
        QTest::newRow("keypad enter") << 2 << int(Qt::Key_Enter) << 2 << "L2";
        QTest::newRow("other keys") << 2 << int(Qt::Key_A) << 2 << "";
        QTest::newRow("escape closes it") << 2 << int(Qt::Key_Escape) << 2 << "";
    }
    void keysMoveTheFocusAndPick() {
        QFETCH(int, active);
        QFETCH(int, key);
        Selector selector(5, active);
        QTest::keyClick(&selector.view, Qt::Key(key));
        QTEST(selector.view.model().focusedIndex(), "focus");
        QTEST(selector.picked, "picked");
        QCOMPARE(selector.dismissed, key == Qt::Key_Escape);
    }

    void aClickPicksTheCard() {
        Selector selector(3, 0);
        QTest::mouseClick(&selector.view, Qt::LeftButton, {},
                          LayoutSelectorModel::cardFrame(2).center().toPoint());
        QCOMPARE(selector.picked, QStringLiteral("L2"));
    }

    void cardsShowTheirStateAndZones() {
        // Card 0 is active, card 1 focused, card 2 neither.
        Selector selector(3, 0);
        QTest::keyClick(&selector.view, Qt::Key_Right);
        const QImage image = selector.view.grab().toImage();
        const LayoutCardColors colors = LayoutCardColors::from(selector.view.palette());
        const auto leftEdge = [&](int card, int x) {
            const QRectF frame = LayoutSelectorModel::cardFrame(card);
            return image.pixelColor(int(frame.left()) + x, int(frame.center().y()));
        };
        QVERIFY(near(leftEdge(1, 2), colors.focusRing));
        QVERIFY(near(leftEdge(0, 1), colors.accent) && !near(leftEdge(0, 2), colors.accent));
        QVERIFY(near(leftEdge(2, 0), colors.separator));
        // Four zones in the thumbnail, each outlined in the accent colour, and the name below.
        const QRectF card = LayoutSelectorModel::cardFrame(2);
        const auto area = [&](QRectF rect) { return rect.translated(card.topLeft()).toRect(); };
        const QRect thumbnail = area(LayoutCardPainter::thumbnailRect(card.size()));
        QVERIFY(pixelsLike(image, thumbnail, colors.accent) > thumbnail.width() * 2);
        QVERIFY(pixelsLike(image, area(LayoutCardPainter::nameRect(card.size())), colors.label) >
                10);
    }

    void hudGrowsWithItsNameAndCutsItOnlyWhenTooSmall() {
        const QString name(200, QLatin1Char('w'));
        LayoutCycleHUDView hud(name, [] {});
        const QSizeF text = QFontMetricsF(hud.font()).size(Qt::TextSingleLine, name);
        QCOMPARE(hud.sizeHint(), QSize(qCeil(text.width() + 40), qCeil(text.height() + 20)));
        hud.resize(hud.sizeHint());
        QCOMPARE(hud.drawnText(), name);
        const QImage image = hud.grab().toImage();
        QVERIFY(pixelsLike(image, image.rect().adjusted(20, 10, -20, -10),
                           hud.palette().color(QPalette::WindowText)) > 10);
        hud.resize(hud.width() / 2, hud.height());
        QVERIFY(hud.drawnText().endsWith(QChar(0x2026)));
    }

    void windowsOpenCentredOnTheVisibleFrame() {
        fakes::NativeWindowsRecord native;
        QtLayoutSwitchViews views(native);
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const DesktopRect visible(0, 0, screen.width(), screen.height());
        auto hud = views.showHUD(QStringLiteral("Home"), visible, [] {});
        auto selector = views.showSelector(
            visible, content(2, 0), [](const QString&) {}, [] {});
        QWidget* const windows[] = {shown<LayoutCycleHUDView>(), shown<LayoutSelectorView>()};
        for (QWidget* window : windows) {
            QVERIFY(window);
            QVERIFY((window->geometry().center() - screen.center()).manhattanLength() <= 2);
        }
        hud.reset();
        QVERIFY(!shown<LayoutCycleHUDView>());
    }
};

QTEST_MAIN(ShellViewsTest)
#include "tst_shell_views.moc"
