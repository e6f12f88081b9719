#include "app/snapping/move_window_controller.h"
#include "snap_fakes.h"

#include <QTest>

using namespace paneforge;

namespace {

// Display frames; each visible frame leaves out a 40-point dock at the bottom.
using Displays = QList<DesktopRect>;
const DesktopRect kLeft(0, 0, 1000, 840);      // visible (0, 40, 1000, 800)
const DesktopRect kRight(1000, 0, 2000, 1640); // visible (1000, 40, 2000, 1600)
const DesktopRect kApart(1100, 0, 1000, 840);  // right of kLeft, 100 points away

} // namespace

class MoveWindowControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void movesToTheNextDisplay_data() {
        QTest::addColumn<Displays>("displays");
        QTest::addColumn<DesktopRect>("window");
        QTest::addColumn<bool>("focused");
        QTest::addColumn<DesktopPoint>("pointer");
        QTest::addColumn<QList<DesktopRect>>("moves");
        // Its top half, a tenth in from the left: the same on the right display's visible frame.
        QTest::newRow("focused window, proportionally")
            << Displays{kLeft, kRight} << DesktopRect(100, 440, 500, 400) << true
            << DesktopPoint{5000, 5000} << QList{DesktopRect(1200, 840, 1000, 800)};
        QTest::newRow("no focused window: the one under the pointer, wrapping round")
            << Displays{kLeft, kRight} << DesktopRect(1200, 840, 1000, 800) << false
            << DesktopPoint{1500, 1000} << QList{DesktopRect(100, 440, 500, 400)};
        QTest::newRow("no focused window and none under the pointer")
            << Displays{kLeft, kRight} << DesktopRect(100, 440, 500, 400) << false
            << DesktopPoint{5000, 5000} << QList<DesktopRect>();
        // The centre lies in the gap between the displays; the bottom-left corner decides.
        QTest::newRow("centre in a gap")
            << Displays{kLeft, kApart} << DesktopRect(800, 440, 400, 400) << true << DesktopPoint{}
            << QList{DesktopRect(1700, 440, 400, 400)};
        // The centre is on the right display although the corner is on the left one.
        QTest::newRow("the centre comes first")
            << Displays{kLeft, kRight} << DesktopRect(900, 440, 400, 400) << true << DesktopPoint{}
            << QList{DesktopRect(0, 240, 200, 200)};
        QTest::newRow("centre and corner off every display")
            << Displays{kLeft, kRight} << DesktopRect(-500, 440, 300, 200) << true << DesktopPoint{}
            << QList<DesktopRect>();
        QTest::newRow("one display") << Displays{kLeft} << DesktopRect(100, 440, 500, 400) << true
                                     << DesktopPoint{} << QList<DesktopRect>();
    }
    void movesToTheNextDisplay() {
        QFETCH(Displays, displays);
        QFETCH(DesktopRect, window);
        QFETCH(bool, focused);
        QFETCH(DesktopPoint, pointer);
        QFETCH(QList<DesktopRect>, moves);
        fakes::Desk desk;
        for (const DesktopRect& frame : displays) {
            desk.addScreen(DisplayId(desk.screenList.size() + 1), frame,
                           DesktopRect(frame.x(), 40, frame.width(), frame.height() - 40));
        }
        desk.pointer = pointer;
        fakes::Windows windows;
        windows.add(1, window);
        windows.focus = focused;
        MoveWindowController(windows, desk, desk).moveFrontmostWindowToNextDisplay();
        QList<DesktopRect> moved;
        for (const auto& call : windows.setFrameCalls) {
            moved << call.frame;
        }
        QCOMPARE(moved, moves);
    }
};

QTEST_GUILESS_MAIN(MoveWindowControllerTest)
#include "tst_move_window_controller.moc"
