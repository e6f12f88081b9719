#include "platform_fakes.h"
#include "ui/layout_card_painter.h"
#include "ui/layout_switch_views.h"

#include <QApplication>
#include <QScreen>
#include <QTest>

using namespace paneforge;

namespace {

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

class LayoutSwitchViewsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void panelFitsItsCards_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("width");
        QTest::newRow("one") << 1 << 164;
        QTest::newRow("five") << 5 << 724;
    }
    void panelFitsItsCards() {
        QFETCH(int, count);
        QFETCH(int, width);
        Selector selector(count, 0);
        QCOMPARE(selector.view.size(), QSize(width, 132));
        // The last card ends where the panel's inset begins.
        QCOMPARE(LayoutSelectorModel::cardFrame(count - 1).right(), width - 16.0);
    }

    void keysMoveTheFocusAndPick_data() {
        QTest::addColumn<int>("active");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("focus");
        QTest::addColumn<QString>("picked");
        const int none = Qt::NoModifier;
        QTest::newRow("right on the last wraps") << 4 << int(Qt::Key_Right) << none << 0 << "";
        QTest::newRow("down") << 1 << int(Qt::Key_Down) << none << 2 << "";
        QTest::newRow("left on the first wraps") << -1 << int(Qt::Key_Left) << none << 4 << "";
        QTest::newRow("up") << 2 << int(Qt::Key_Up) << none << 1 << "";
        QTest::newRow("tab") << 4 << int(Qt::Key_Tab) << none << 0 << "";
        QTest::newRow("shift-tab")
            << 0 << int(Qt::Key_Backtab) << int(Qt::ShiftModifier) << 4 << "";
        QTest::newRow("keypad enter")
            << 2 << int(Qt::Key_Enter) << int(Qt::KeypadModifier) << 2 << "L2";
        QTest::newRow("other keys") << 2 << int(Qt::Key_A) << none << 2 << "";
    }
    void keysMoveTheFocusAndPick() {
        QFETCH(int, active);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, focus);
        QFETCH(QString, picked);
        Selector selector(5, active);
        QTest::keyClick(&selector.view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(selector.view.model().focusedIndex(), focus);
        QCOMPARE(selector.picked, picked);
        QVERIFY(!selector.dismissed); // Escape closes it: agent_shell
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
        const auto leftEdge = [](int card, int x) {
            const QRectF frame = LayoutSelectorModel::cardFrame(card);
            return QPoint(int(frame.left()) + x, int(frame.center().y()));
        };
        QVERIFY(near(image.pixelColor(leftEdge(1, 2)), colors.focusRing));
        QVERIFY(near(image.pixelColor(leftEdge(0, 1)), colors.accent));
        QVERIFY(!near(image.pixelColor(leftEdge(0, 2)), colors.accent));
        QVERIFY(near(image.pixelColor(leftEdge(2, 0)), colors.separator));
        // Four zones in the thumbnail, each outlined in the accent colour, and the name below.
        const QRectF card = LayoutSelectorModel::cardFrame(2);
        const QRect thumbnail =
            LayoutCardPainter::thumbnailRect(card.size()).translated(card.topLeft()).toRect();
        QVERIFY(pixelsLike(image, thumbnail, colors.accent) > thumbnail.width() * 2);
        const QRect name =
            LayoutCardPainter::nameRect(card.size()).translated(card.topLeft()).toRect();
        QVERIFY(pixelsLike(image, name, colors.label) > 10);
    }

    void hudGrowsWithItsName_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("atLeast");
        QTest::newRow("short: the smallest plate") << "A" << true;
        QTest::newRow("200 characters") << QString(200, QLatin1Char('w')) << false;
    }
    void hudGrowsWithItsName() {
        QFETCH(QString, name);
        QFETCH(bool, atLeast);
        LayoutCycleHUDView hud(name, [] {});
        const QSizeF text = QFontMetricsF(hud.font()).size(Qt::TextSingleLine, name);
        const QSize size = hud.sizeHint();
        QCOMPARE(size, atLeast ? QSize(120, 48)
                               : QSize(qCeil(text.width() + 40), qCeil(text.height() + 20)));
        hud.resize(size);
        QCOMPARE(hud.drawnText(), name);
        const QImage image = hud.grab().toImage();
        QVERIFY(pixelsLike(image, image.rect().adjusted(20, 10, -20, -10),
                           hud.palette().color(QPalette::WindowText)) > 10);
        // Cut at the tail only where the plate cannot hold the name.
        hud.resize(size.width() / 2, size.height());
        QCOMPARE(hud.drawnText().endsWith(QChar(0x2026)), !atLeast);
    }

    void windowsOpenWhereTheyShould() {
        fakes::NativeWindowsRecord native;
        QtLayoutSwitchViews views(native);
        // Desktop space has y up: the lower 600 points of the primary screen, centred at (400, 300)
        // in Qt's coordinates when the screen is 800 by 600.
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const DesktopRect visible(0, 0, screen.width(), screen.height());

        auto hud = views.showHUD(QStringLiteral("Home"), visible, [] {});
        auto* hudView = shown<LayoutCycleHUDView>();
        QVERIFY(hudView);
        QVERIFY((hudView->geometry().center() - screen.center()).manhattanLength() <= 2);
        QVERIFY(native.activated.empty());
        hud.reset();
        QVERIFY(!hudView->isVisible());

        auto selector = views.showSelector(
            visible, content(2, 0), [](const QString&) {}, [] {});
        auto* panel = shown<LayoutSelectorView>();
        QVERIFY(panel);
        QVERIFY((panel->geometry().center() - screen.center()).manhattanLength() <= 2);
        QCOMPARE(native.activated, std::vector<NativeWindowId>{NativeWindowId(panel->winId())});
        selector.reset();
        QVERIFY(!panel->isVisible());
    }
};

QTEST_MAIN(LayoutSwitchViewsTest)
#include "tst_layout_switch_views.moc"
