#include "app/snapping/move_window_controller.h"
#include "snap_fakes.h"

#include <QTest>

using namespace paneforge;

Q_DECLARE_METATYPE(std::optional<DesktopPoint>)

namespace {

// Display frames; each visible frame leaves out a 40-point dock at the bottom.
using Displays = QList<DesktopRect>;
const DesktopRect kLeft(0, 0, 1000, 840);      // visible (0, 40, 1000, 800)
const DesktopRect kRight(1000, 0, 2000, 1640); // visible (1000, 40, 2000, 1600)
const DesktopRect kApart(1100, 0, 1000, 840);  // right of kLeft, 100 points away

} // namespace

// The focused window moved in proportion, and back round: agent_shell.
class MoveWindowControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void movesToTheNextDisplay_data() {
        QTest::addColumn<Displays>("displays");
        QTest::addColumn<DesktopRect>("window");
        QTest::addColumn<std::optional<DesktopPoint>>("pointer"); // none: the window is focused
        QTest::addColumn<QList<DesktopRect>>("moves");
        const auto row = [](const char* name, Displays displays, DesktopRect window,
                            std::optional<DesktopPoint> pointer, QList<DesktopRect> moves) {
            QTest::newRow(name) << displays << window << pointer << moves;
        };
        const DesktopRect left(100, 440, 500, 400);
        row("none focused: the one under the pointer, wrapping round", {kLeft, kRight},
            DesktopRect(1200, 840, 1000, 800), DesktopPoint{1500, 1000}, {left});
        row("none focused and none under the pointer", {kLeft, kRight}, left,
            DesktopPoint{5000, 5000}, {});
        // The centre lies in the gap between the displays; the bottom-left corner decides.
        row("centre in a gap", {kLeft, kApart}, DesktopRect(800, 440, 400, 400), {},
            {DesktopRect(1700, 440, 400, 400)});
        row("centre and corner off every display", {kLeft, kRight},
            DesktopRect(-500, 440, 300, 200), {}, {});
        row("one display", {kLeft}, left, {}, {});
    }
    void movesToTheNextDisplay() {
        QFETCH(Displays, displays);
        QFETCH(DesktopRect, window);
        QFETCH(std::optional<DesktopPoint>, pointer);
        QFETCH(QList<DesktopRect>, moves);
        fakes::Desk desk;
        for (const DesktopRect& frame : displays) {
            desk.addScreen(DisplayId(desk.screenList.size() + 1), frame,
                           DesktopRect(frame.x(), 40, frame.width(), frame.height() - 40));
        }
        desk.pointer = pointer.value_or(DesktopPoint{});
        fakes::Windows windows;
        windows.add(1, window);
        windows.focus = !pointer;
        MoveWindowController(windows, desk, desk).moveFrontmostWindowToNextDisplay();
        QCOMPARE(windows.frames(), moves);
    }
};

QTEST_GUILESS_MAIN(MoveWindowControllerTest)
#include "tst_move_window_controller.moc"
