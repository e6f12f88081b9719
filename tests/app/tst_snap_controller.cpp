#include "app/runtime/notification_center.h"
#include "app/snapping/move_window_controller.h"
#include "app/snapping/snap_controller.h"
#include "core/input/hotkey_formatter.h"
#include "manual_scheduler.h"
#include "snap_fakes.h"

#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace paneforge {
char* toString(const DesktopRect& rect) {
    return qstrdup(SnapDiagnosticFormatter::formatRect(rect).toUtf8().constData());
}
} // namespace paneforge

namespace {

constexpr std::uint32_t kCommand = ModifierMapper::kCommandFlag;
constexpr std::uint32_t kShift = ModifierMapper::kShiftFlag;
constexpr std::uint32_t kOption = ModifierMapper::kOptionFlag;

// Display 1: 1000 x 800 with a 20-point panel on top. Default layout 2 x 2 with 10-point margins:
// columns 10..495 and 505..990, rows 395..770 (top) and 10..385 (bottom).
const DesktopRect kVisible1(0, 0, 1000, 780);
const DesktopRect kTopLeft(10, 395, 485, 375);
const DesktopRect kTopRight(505, 395, 485, 375);
const DesktopRect kBottomRight(505, 10, 485, 375);
const DesktopRect kFrame2(1000, 0, 600, 800); // right of display 1, no panel
const DesktopPoint kInTopLeft(250, 600);
const DesktopPoint kInTopRight(750, 600);
const DesktopPoint kStart(200, 150);
const DesktopRect kWindowFrame(100, 100, 300, 200);

// For moves to the next display: each visible frame leaves out a 40-point dock at the bottom.
using Displays = QList<DesktopRect>;
const DesktopRect kLeft(0, 0, 1000, 840);      // visible (0, 40, 1000, 800)
const DesktopRect kRight(1000, 0, 2000, 1640); // visible (1000, 40, 2000, 1600)
const DesktopRect kApart(1100, 0, 1000, 840);  // right of kLeft, 100 points away

struct Rig {
    Rig() {
        desk.addScreen(1, {0, 0, 1000, 800}, kVisible1);
        window = windows.add(7, kWindowFrame);
        save(PaneforgeConfig::makeDefault().copying(
            std::nullopt, GridDefinition(QStringLiteral("2x2"), QStringLiteral("Q"), {0.5}, {0.5}),
            10.0));
    }
    void save(const PaneforgeConfig& config) { store.saveConfig(config); }
    void send(std::uint32_t type, std::uint32_t flags) {
        controller->handleEvent(InputEvent{type, desk.pointer, flags});
    }
    // Pressing on a window grabs it, as on its title bar: it then follows the pointer.
    void down(DesktopPoint at, std::uint32_t flags = 0) {
        desk.pointer = at;
        grabbed = std::dynamic_pointer_cast<const fakes::Window>(windows.windowUnderPoint(at));
        send(InputEvent::LeftMouseDown, flags);
    }
    void drag(DesktopPoint to, std::uint32_t flags) {
        if (grabbed) {
            auto& frame = const_cast<fakes::Window&>(*grabbed).frame;
            frame =
                DesktopRect(frame.minX() + to.x - desk.pointer.x,
                            frame.minY() + to.y - desk.pointer.y, frame.width(), frame.height());
        }
        desk.pointer = to;
        send(InputEvent::LeftMouseDragged, flags);
    }
    void flags(std::uint32_t flags) { send(InputEvent::FlagsChanged, flags); }
    void up(std::uint32_t flags) { send(InputEvent::LeftMouseUp, flags); }
    void snap(DesktopPoint to, DesktopPoint from = kStart) {
        down(from);
        flags(kCommand);
        drag(to, kCommand);
        up(kCommand);
    }
    const fakes::OverlayRecord& overlay() const { return overlays.last(); }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("Test")),
                      [this] { return directory.path(); }};
    ManualScheduler scheduler;
    NotificationCenter notifications;
    fakes::Desk desk;
    fakes::Windows windows;
    fakes::Overlays overlays;
    fakes::EventTaps taps;
    EventTapManager tapManager{taps, scheduler, notifications};
    std::optional<QString> keyWindow;
    std::shared_ptr<fakes::Window> window;
    std::shared_ptr<const fakes::Window> grabbed;
    std::optional<SnapController> controller{
        SnapControllerServices{store, desk, desk, desk, windows, tapManager, overlays, scheduler,
                               [this] { return keyWindow; }, [](const QString&) {}}};
};

using Gesture = std::function<void(Rig&)>;

} // namespace

Q_DECLARE_METATYPE(Gesture)
Q_DECLARE_METATYPE(std::optional<DesktopPoint>)

// The snap itself, multi-zone snapping and restoring on release: agent_snapping. The focused window
// moved to the next display in proportion, and back round: agent_shell.
class SnapControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void snapIsAppliedAgainAndTheZonesLeaveAfterADelay() {
        Rig rig;
        rig.down(kStart);
        rig.drag(DesktopPoint(210, 160), 0);
        QVERIFY(rig.overlays.built.empty());
        rig.flags(kCommand);
        rig.drag(kInTopRight, kCommand);
        rig.up(kCommand);
        QCOMPARE(rig.windows.frames(), QList<DesktopRect>{kTopRight});

        // Applied again at once and once more after a moment; the zones leave meanwhile.
        rig.scheduler.runPosted();
        QCOMPARE(rig.windows.frames().size(), 2);
        QVERIFY(rig.overlay().visible);
        rig.scheduler.advance(0.5);
        QVERIFY(!rig.overlay().visible);
        QCOMPARE(rig.windows.frames(), (QList<DesktopRect>{kTopRight, kTopRight, kTopRight}));

        // The next drag reuses the overlay; what is queued holds the controller weakly.
        rig.snap(kInTopLeft, kInTopRight);
        QCOMPARE(rig.overlays.built.size(), std::size_t{1});
        rig.controller.reset();
        rig.scheduler.advance(1.0);
        QCOMPARE(rig.windows.frames().size(), 4);
    }

    void selectionDecidesTheFrame_data() {
        QTest::addColumn<Gesture>("gesture");
        QTest::addColumn<DesktopRect>("snapped");
        QTest::newRow("multi, then single: the zone under the pointer") << Gesture([](Rig& r) {
            r.down(kStart);
            r.drag(kInTopLeft, 0);
            r.flags(kCommand | kShift);
            r.drag(kInTopRight, kCommand | kShift);
            r.drag(DesktopPoint(750, 200), kCommand | kShift);
            r.flags(kCommand);
        }) << kBottomRight;
        QTest::newRow("on a shared border: the upper or left zone") << Gesture([](Rig& r) {
            r.save(r.store.loadConfig().copying(std::nullopt, std::nullopt, 0.0));
            r.down(kStart);
            r.flags(kCommand);
            r.drag(DesktopPoint(500, 390), kCommand);
        }) << DesktopRect(0, 390, 500, 390);
    }
    void selectionDecidesTheFrame() {
        QFETCH(Gesture, gesture);
        QFETCH(DesktopRect, snapped);
        Rig rig;
        gesture(rig);
        QCOMPARE(rig.overlay().selectionFrames, QList<DesktopRect>{snapped});
        rig.up(0);
        QCOMPARE(rig.windows.frames(), QList<DesktopRect>{snapped});
    }

    void pressingAgainResumesWithTheSameWindow() {
        Rig rig;
        rig.windows.add(8, DesktopRect(500, 300, 400, 400));
        rig.down(kStart);
        rig.flags(kCommand);
        rig.flags(0);
        rig.desk.pointer = DesktopPoint(600, 400); // over the other window
        rig.flags(kCommand);
        QCOMPARE(rig.controller->originalWindowFrame(), std::optional(kWindowFrame));
        rig.up(kCommand);
        QCOMPARE(rig.windows.setFrameCalls.back().windowId, 7);
    }

    void movingToAnotherDisplayMovesTheOverlay() {
        Rig rig;
        rig.desk.addScreen(2, kFrame2, kFrame2);
        rig.down(kStart);
        rig.flags(kCommand);
        rig.drag(DesktopPoint(1500, 400), kCommand);
        QCOMPARE(rig.overlays.built.size(), std::size_t{2});
        QVERIFY(rig.overlays.built[0]->closed);
        QCOMPARE(rig.overlay().frame, kFrame2);
        QVERIFY(rig.overlay().visible);
    }

    void nothingMoves_data() {
        QTest::addColumn<Gesture>("gesture");
        QTest::addColumn<bool>("zonesShown");
        const auto row = [](const char* name, bool shown, Gesture gesture) {
            QTest::newRow(name) << gesture << shown;
        };
        row("combination held before the button", false, [](Rig& r) {
            r.flags(kCommand); // not dragging: ignored
            r.down(kStart, kCommand);
            r.drag(kInTopLeft, kCommand);
            r.up(kCommand);
        });
        row("an extra modifier held", false, [](Rig& r) {
            r.down(kStart);
            r.flags(kCommand | kOption);
            r.drag(kInTopRight, kCommand | kOption);
            r.up(kCommand | kOption);
        });
        row("combination let go, restoring off", true, [](Rig& r) {
            r.save(r.store.loadConfig().withRestoreWindowSizeOnUnsnap(false));
            r.down(kStart);
            r.flags(kCommand);
            r.drag(DesktopPoint(700, 450), kCommand);
            r.flags(0);
            r.up(0);
        });
        row("released over the panel", true, [](Rig& r) {
            r.down(kStart);
            r.drag(DesktopPoint(200, 790), 0);
            r.flags(kCommand);
            r.up(kCommand);
        });
        row("released off every display", true, [](Rig& r) { r.snap(DesktopPoint(-50, 100)); });
        row("pressed off every display", false, [](Rig& r) {
            r.down(kStart);
            r.desk.pointer = DesktopPoint(-50, 100);
            r.flags(kCommand);
            r.up(kCommand);
        });
        row("no window", true, [](Rig& r) { r.snap(kInTopLeft, DesktopPoint(700, 700)); });
        row("not a standard window", true, [](Rig& r) {
            r.window->standard = false;
            r.snap(kInTopLeft);
        });
    }
    void nothingMoves() {
        QFETCH(Gesture, gesture);
        QFETCH(bool, zonesShown);
        Rig rig;
        gesture(rig);
        QVERIFY(rig.windows.setFrameCalls.empty());
        QCOMPARE(rig.overlays.built.empty(), !zonesShown);
        // With nothing to wait for, the zones go at once.
        QVERIFY(rig.overlays.built.empty() || !rig.overlay().visible);
    }

    void preferencesWindowSuspendsSnapping() {
        Rig rig;
        rig.keyWindow = QStringLiteral("Preferences");
        rig.down(kStart);
        rig.flags(kCommand);
        QVERIFY(!rig.controller->isDragging());
        QVERIFY(rig.overlays.built.empty());
    }

    void disabledTapIsReinstalled() {
        Rig rig;
        rig.controller->start();
        rig.taps.handler(InputEvent{InputEvent::TapDisabledByUserInput, {}, 0});
        QCOMPARE(rig.taps.creations, 2);
        QCOMPARE(rig.taps.liveTaps, 1);
        // The re-armed handler still reaches the controller.
        rig.taps.handler(InputEvent{InputEvent::LeftMouseDown, kStart, 0});
        QVERIFY(rig.controller->isDragging());
    }

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
        // The centre lies in the gap between the displays; the bottom-left corner decides.
        row("centre in a gap", {kLeft, kApart}, DesktopRect(800, 440, 400, 400), {},
            {DesktopRect(1700, 440, 400, 400)});
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

QTEST_GUILESS_MAIN(SnapControllerTest)
#include "tst_snap_controller.moc"
