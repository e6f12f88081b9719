#include "ui/menu_bar_icon_renderer.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QTest>

using namespace paneforge;

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

    void menuQuitsAndRunsWithoutATray() {
        StatusItemController controller(LoggerFactory::makeLogger(QStringLiteral("Test")));
        int quits = 0;
        controller.setOnQuit([&quits] { ++quits; });
        QCOMPARE(controller.configureStatusItem(), false); // the offscreen platform has no tray
        QCOMPARE(controller.statusItem().contextMenu(), &controller.menu());
        const QList<QAction*> actions = controller.menu().actions();
        QCOMPARE(actions.size(), 1);
        QCOMPARE(actions.front()->text(), QStringLiteral("Quit Paneforge"));
        actions.front()->trigger();
        QCOMPARE(quits, 1);
    }
};

QTEST_MAIN(StatusItemTest)
#include "tst_status_item.moc"
