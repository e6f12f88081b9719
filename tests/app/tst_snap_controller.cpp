#include "app/runtime/notification_center.h"
#include "app/snapping/snap_controller.h"
#include "core/input/hotkey_formatter.h"
#include "manual_scheduler.h"
#include "snap_fakes.h"

#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace paneforge {
// Readable rectangles in QCOMPARE failures.
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
const DesktopRect kFrame1(0, 0, 1000, 800);
const DesktopRect kVisible1(0, 0, 1000, 780);
const DesktopRect kTopLeft(10, 395, 485, 375);
const DesktopRect kTopRight(505, 395, 485, 375);
const DesktopRect kBottomLeft(10, 10, 485, 375);
const DesktopRect kBottomRight(505, 10, 485, 375);
// Display 2, right of display 1: 600 x 800, no panel.
const DesktopRect kFrame2(1000, 0, 600, 800);

const DesktopPoint kInTopLeft(250, 600);
const DesktopPoint kInTopRight(750, 600);
const DesktopPoint kInBottomRight(750, 200);

const DesktopRect kWindowFrame(100, 100, 300, 200);

GridDefinition twoByTwo() {
    return GridDefinition(QStringLiteral("2x2"), QStringLiteral("Quarters"), {0.5}, {0.5});
}

// Everything a controller needs, with the configuration in a real store on disk.
class Rig {
public:
    Rig()
        : store(LoggerFactory::makeLogger(QStringLiteral("Test")),
                [this] { return directory.path(); })
        , tapManager(taps, scheduler, notifications) {
        controller.emplace(SnapControllerServices{store, desk, desk, desk, windows, tapManager,
                                                  overlays, scheduler, [this] { return keyWindow; },
                                                  [this](const QString& line) { log << line; }});
        desk.addScreen(1, kFrame1, kVisible1);
        window = windows.add(7, kWindowFrame);
        save(PaneforgeConfig::makeDefault().copying(std::nullopt, twoByTwo(), 10.0));
    }

    void save(const PaneforgeConfig& config) { store.saveConfig(config); }
    void corruptConfig() {
        QFile file(store.getConfigPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{ not json");
    }

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
    // Grabs at `from`, presses the single snap combination there and lets go at `to`.
    void snap(DesktopPoint to, DesktopPoint from = DesktopPoint(200, 150)) {
        down(from);
        flags(kCommand);
        drag(to, kCommand);
        up(kCommand);
    }

    // The frames set on the dragged window, re-applications included.
    QList<DesktopRect> framesSet() const {
        QList<DesktopRect> frames;
        for (const auto& call : windows.setFrameCalls) {
            frames << call.frame;
        }
        return frames;
    }

    QTemporaryDir directory;
    ConfigStore store;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    fakes::Desk desk;
    fakes::Windows windows;
    fakes::Overlays overlays;
    fakes::EventTaps taps;
    EventTapManager tapManager;
    std::optional<QString> keyWindow;
    QStringList log;
    std::shared_ptr<fakes::Window> window;
    std::shared_ptr<const fakes::Window> grabbed;
    std::optional<SnapController> controller;
};

using Gesture = std::function<void(Rig&)>;

} // namespace

Q_DECLARE_METATYPE(Gesture)

class SnapControllerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void combinationPressedMidDragSnapsToTheZone();
    void selectionDecidesTheFrame_data();
    void selectionDecidesTheFrame();
    void releasingTheCombinationRestores_data();
    void releasingTheCombinationRestores();
    void pressingAgainResumesWithTheSameWindow();
    void movingToAnotherDisplaySwitchesLayoutAndOverlay();
    void nothingMoves_data();
    void nothingMoves();
    void preferencesWindowSuspendsSnapping();
    void disabledTapIsReinstalled();
};

void SnapControllerTest::combinationPressedMidDragSnapsToTheZone() {
    Rig rig;
    rig.down(DesktopPoint(200, 150));
    rig.drag(DesktopPoint(210, 160), 0);
    QVERIFY(rig.overlays.built.empty());

    rig.flags(kCommand);
    QVERIFY(rig.controller->isOverlayActive());
    QCOMPARE(rig.overlays.built.size(), std::size_t{1});
    QCOMPARE(rig.overlays.last().frame, kVisible1);
    QVERIFY(rig.overlays.last().visible);
    QCOMPARE(rig.overlays.last().cellFrames.size(), 4);
    QCOMPARE(rig.overlays.last().selectionFrames, QList<DesktopRect>{kBottomLeft});
    // The frame when the combination was pressed, after the first 10 points of dragging.
    QCOMPARE(rig.controller->originalWindowFrame(), std::optional(DesktopRect(110, 110, 300, 200)));

    rig.drag(kInTopRight, kCommand);
    QCOMPARE(rig.overlays.last().selectionFrames, QList<DesktopRect>{kTopRight});
    rig.up(kCommand);

    QCOMPARE(rig.framesSet(), QList<DesktopRect>{kTopRight});
    QVERIFY(!rig.controller->isDragging());
    QVERIFY(rig.controller->selectionState().isEmpty());
    // Applied again at once and once more after the post-drag delay; the zones leave the screen
    // in between, once the window manager has had its moment.
    rig.scheduler.runPosted();
    QCOMPARE(rig.framesSet().size(), 2);
    rig.scheduler.advance(SnapController::overlayHideDelay - 0.001);
    QVERIFY(rig.overlays.last().visible);
    rig.scheduler.advance(0.002);
    QVERIFY(!rig.overlays.last().visible);
    rig.scheduler.advance(0.079 - SnapController::overlayHideDelay - 0.001);
    QCOMPARE(rig.framesSet().size(), 2);
    rig.scheduler.advance(0.002);
    QCOMPARE(rig.framesSet(), (QList<DesktopRect>{kTopRight, kTopRight, kTopRight}));

    QVERIFY(rig.log.contains("SnapController.snapDragStart modifiers=256 mode=single"));
    QVERIFY(rig.log.contains("SnapController.snapAndHide window window 7 cocoaFrame=(650.0,550.0 "
                             "300.0x200.0) selected=1"));

    // The next drag on the same display shows the same overlay window again.
    rig.snap(kInTopLeft, kInTopRight);
    QCOMPARE(rig.overlays.built.size(), std::size_t{1});
    // Queued re-applications and hiding hold the controller weakly.
    rig.controller.reset();
    rig.scheduler.advance(1.0);
    QCOMPARE(rig.framesSet().size(), 4);
}

void SnapControllerTest::selectionDecidesTheFrame_data() {
    QTest::addColumn<Gesture>("gesture");
    QTest::addColumn<QList<DesktopRect>>("selection");
    QTest::addColumn<DesktopRect>("snapped");
    const auto multiOverThreeZones = [](Rig& r) {
        r.down(DesktopPoint(200, 150));
        r.drag(kInTopLeft, 0);
        r.flags(kCommand | kShift);
        r.drag(kInTopRight, kCommand | kShift);
        r.drag(kInBottomRight, kCommand | kShift);
    };
    // The union covers the gaps between the zones.
    QTest::newRow("multi: the bounding box")
        << Gesture(multiOverThreeZones) << QList<DesktopRect>{kTopLeft, kTopRight, kBottomRight}
        << DesktopRect(10, 10, 980, 760);
    QTest::newRow("multi, then single: the zone under the pointer") << Gesture([=](Rig& r) {
        multiOverThreeZones(r);
        r.flags(kCommand);
    }) << QList<DesktopRect>{kBottomRight} << kBottomRight;
    QTest::newRow("on a shared border: the upper or left zone") << Gesture([](Rig& r) {
        r.save(r.store.loadConfig().copying(std::nullopt, std::nullopt, 0.0));
        r.down(DesktopPoint(200, 150));
        r.flags(kCommand);
        r.drag(DesktopPoint(500, 390), kCommand);
    }) << QList<DesktopRect>{DesktopRect(0, 390, 500, 390)} << DesktopRect(0, 390, 500, 390);
}

void SnapControllerTest::selectionDecidesTheFrame() {
    QFETCH(Gesture, gesture);
    QFETCH(QList<DesktopRect>, selection);
    QFETCH(DesktopRect, snapped);
    Rig rig;
    gesture(rig);
    QCOMPARE(rig.overlays.last().selectionFrames, selection);
    rig.up(0);
    QCOMPARE(rig.framesSet(), QList<DesktopRect>{snapped});
}

void SnapControllerTest::releasingTheCombinationRestores_data() {
    QTest::addColumn<std::optional<bool>>("restore");
    QTest::addColumn<bool>("restored");
    QTest::newRow("on") << std::optional<bool>(true) << true;
    QTest::newRow("off") << std::optional<bool>(false) << false;
    QTest::newRow("never chosen: default on") << std::optional<bool>() << true;
}

void SnapControllerTest::releasingTheCombinationRestores() {
    QFETCH(std::optional<bool>, restore);
    QFETCH(bool, restored);
    Rig rig;
    ConfigSnapshot snapshot = rig.store.loadConfig().snapshot();
    snapshot.restoreWindowSizeOnUnsnap = restore;
    rig.save(PaneforgeConfig(snapshot));

    rig.down(DesktopPoint(200, 150));
    rig.flags(kCommand);
    rig.drag(DesktopPoint(700, 450), kCommand);
    rig.flags(0);

    QVERIFY(!rig.controller->isOverlayActive());
    QVERIFY(!rig.overlays.last().visible);
    QVERIFY(rig.controller->selectionState().isEmpty());
    QCOMPARE(rig.framesSet(), restored ? QList<DesktopRect>{kWindowFrame} : QList<DesktopRect>{});
    rig.up(0);
    QCOMPARE(rig.framesSet().size(), restored ? 1 : 0);
}

void SnapControllerTest::pressingAgainResumesWithTheSameWindow() {
    Rig rig;
    auto other = rig.windows.add(8, DesktopRect(500, 300, 400, 400));
    rig.down(DesktopPoint(200, 150));
    rig.flags(kCommand);
    rig.flags(0);
    // The pointer is now over the other window, but the drag keeps its window and frame.
    rig.desk.pointer = DesktopPoint(600, 400);
    rig.flags(kCommand);
    QCOMPARE(rig.controller->originalWindowFrame(), std::optional(kWindowFrame));
    rig.up(kCommand);
    QCOMPARE(rig.windows.setFrameCalls.back().windowId, 7);
    QCOMPARE(other->frame, DesktopRect(500, 300, 400, 400));
}

void SnapControllerTest::movingToAnotherDisplaySwitchesLayoutAndOverlay() {
    Rig rig;
    rig.desk.addScreen(2, kFrame2, kFrame2);
    const GridDefinition columns(QStringLiteral("cols"), QStringLiteral("Columns"), {0.25, 0.75},
                                 {});
    const GridDefinition other(QStringLiteral("other"), QStringLiteral("Other"), {0.5}, {});
    DisplayLayoutsMap displays;
    displays.insert_or_assign(fakes::Desk::identifierFor(2).stableId(),
                              DisplayLayouts(QStringLiteral("cols"), {other, columns}));
    rig.save(rig.store.loadConfig().copying(displays, std::nullopt, 0.0));

    rig.down(DesktopPoint(200, 150));
    rig.flags(kCommand);
    QCOMPARE(rig.overlays.last().cellFrames.size(), 4);
    rig.drag(DesktopPoint(1500, 400), kCommand);

    QCOMPARE(rig.overlays.built.size(), std::size_t{2});
    QVERIFY(rig.overlays.built[0]->closed);
    QCOMPARE(rig.overlays.last().frame, kFrame2);
    QVERIFY(rig.overlays.last().visible);
    QCOMPARE(rig.overlays.last().cellFrames.size(), 3);
    rig.up(kCommand);
    QCOMPARE(rig.framesSet(), QList<DesktopRect>{DesktopRect(1450, 0, 150, 800)});

    // Back on the first display another window is built; only the last one is kept.
    rig.down(DesktopPoint(1500, 400));
    rig.flags(kCommand);
    rig.drag(kInTopLeft, kCommand);
    QCOMPARE(rig.overlays.built.size(), std::size_t{3});
    QVERIFY(rig.overlays.built[1]->closed);
    QCOMPARE(rig.overlays.last().frame, kVisible1);
}

void SnapControllerTest::nothingMoves_data() {
    QTest::addColumn<Gesture>("gesture");
    QTest::addColumn<bool>("zonesShown");
    QTest::addColumn<QString>("logged"); // empty: nothing at all
    QTest::newRow("combination held before the button") << Gesture([](Rig& r) {
        r.flags(kCommand); // not dragging: ignored
        r.down(DesktopPoint(200, 150), kCommand);
        r.drag(kInTopLeft, kCommand);
        r.up(kCommand);
    }) << false << QString();
    QTest::newRow("an extra modifier held") << Gesture([](Rig& r) {
        r.down(DesktopPoint(200, 150));
        r.flags(kCommand | kOption);
        r.drag(kInTopRight, kCommand | kOption);
        r.up(kCommand | kOption);
    }) << false << "SnapController.updateOverlayState noMatch modifiers=2304";
    QTest::newRow("released outside every zone")
        << Gesture([](Rig& r) {
               r.down(DesktopPoint(200, 150));
               // Over the panel: on the display but outside its visible frame.
               r.drag(DesktopPoint(200, 790), 0);
               r.flags(kCommand);
               r.up(kCommand);
           })
        << true
        << "SnapController.snapAndHide point=(200.0,790.0) inFrame=true inVisible=false "
           "displayId=1 layout=2x2 cells=4 selected=0 requested=nil";
    QTest::newRow("released off every display")
        << Gesture([](Rig& r) { r.snap(DesktopPoint(-50, 100)); }) << true
        << "SnapController.snapAndHide point=(-50.0,100.0) inFrame=false inVisible=false "
           "displayId=nil layout=unknown cells=4 selected=1 requested=nil-visibleFrame";
    QTest::newRow("pressed off every display") << Gesture([](Rig& r) {
        r.down(DesktopPoint(200, 150));
        r.desk.pointer = DesktopPoint(-50, 100);
        r.flags(kCommand);
        r.up(kCommand);
    }) << false << "SnapController.showOverlay visibleFrame=nil point=(-50.0,100.0)";
    QTest::newRow("no window") << Gesture([](Rig& r) {
        r.snap(kInTopLeft, DesktopPoint(700, 700));
    }) << true << "SnapController.snapAndHide window=nil point=(250.0,600.0)";
    QTest::newRow("not a standard window")
        << Gesture([](Rig& r) {
               r.window->standard = false;
               r.snap(kInTopLeft);
           })
        << true
        << "SnapController.snapAndHide notStandardWindow window 7 cocoaFrame=(150.0,550.0 "
           "300.0x200.0)";
    // The defaults decide the match; without a configuration no zone is chosen.
    QTest::newRow("configuration unreadable") << Gesture([](Rig& r) {
        r.corruptConfig();
        r.snap(kInTopLeft);
    }) << true << "SnapController.snapAndHide config=nil";
}

void SnapControllerTest::nothingMoves() {
    QFETCH(Gesture, gesture);
    QFETCH(bool, zonesShown);
    QFETCH(QString, logged);
    Rig rig;
    gesture(rig);
    QVERIFY(rig.windows.setFrameCalls.empty());
    QVERIFY2(logged.isEmpty() ? rig.log.isEmpty() : rig.log.contains(logged),
             qPrintable(rig.log.join('\n')));
    QCOMPARE(rig.overlays.built.empty(), !zonesShown);
    // With nothing to wait for, the zones go at once.
    QVERIFY(rig.overlays.built.empty() || !rig.overlays.last().visible);
}

void SnapControllerTest::preferencesWindowSuspendsSnapping() {
    Rig rig;
    rig.keyWindow = QStringLiteral("Preferences");
    rig.down(DesktopPoint(200, 150));
    rig.flags(kCommand);
    QVERIFY(!rig.controller->isDragging());
    QVERIFY(rig.overlays.built.empty());

    rig.keyWindow = QStringLiteral("Preferences…");
    rig.down(DesktopPoint(200, 150));
    QVERIFY(rig.controller->isDragging());
}

void SnapControllerTest::disabledTapIsReinstalled() {
    Rig rig;
    // Before start() the controller holds no tap and leaves a disabled one alone.
    rig.send(InputEvent::TapDisabledByTimeout, 0);
    QCOMPARE(rig.taps.creations, 0);

    rig.controller->start();
    QCOMPARE(rig.taps.creations, 1);
    QVERIFY(rig.tapManager.isTapInstalled());
    rig.taps.handler(InputEvent{InputEvent::TapDisabledByUserInput, {}, 0});
    QCOMPARE(rig.taps.creations, 2);
    QVERIFY(rig.tapManager.isTapInstalled());

    // The re-armed handler still reaches the controller.
    rig.desk.pointer = DesktopPoint(200, 150);
    rig.taps.handler(InputEvent{InputEvent::LeftMouseDown, rig.desk.pointer, 0});
    QVERIFY(rig.controller->isDragging());
}

QTEST_GUILESS_MAIN(SnapControllerTest)
#include "tst_snap_controller.moc"
