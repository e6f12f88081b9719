// The real agent under Xvfb and openbox: windows dragged by their title bar with xdotool, a snap
// combination pressed mid-drag, and the window's outer frame checked where it lands; on two
// monitors also a layout drawn in the zone editor with the mouse and snapped to at once. Built
// three times: one monitor without a compositor or tray, one with both, and two monitors.

#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "core/layouts/display_layout_service.h"
#include "x11_agent_test.h"

#include <QFile>
#include <QTest>
#include <cmath>
#include <string_view>

using namespace paneforge;

namespace {

constexpr std::string_view kVariant = AGENT_TEST_VARIANT;
constexpr bool kTwoMonitors = kVariant == "two_monitors";
constexpr bool kComposited = kVariant == "composited";
constexpr int kScreenHeight = 1080;
const QString kSingleMatch = QStringLiteral("updateOverlayState match modifiers=256 mode=single");
const QString kSnapped = QStringLiteral("SnapController.snapAndHide window ");
const QString kSetFrame = QStringLiteral("X11WindowService.setFrame ");

DesktopRect fromRoot(double x, double y, double width, double height) {
    return DesktopRect(x, kScreenHeight - y - height, width, height);
}

bool near(const DesktopRect& a, const DesktopRect& b) {
    return std::abs(a.minX() - b.minX()) <= 1 && std::abs(a.minY() - b.minY()) <= 1 &&
           std::abs(a.width() - b.width()) <= 1 && std::abs(a.height() - b.height()) <= 1;
}

} // namespace

class AgentSnappingTest : public X11AgentTest {
    Q_OBJECT

public:
    using X11AgentTest::X11AgentTest;

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(waitForDisplays(kTwoMonitors ? 2 : 1));
        // 2 x 2 with 10-point margins everywhere; per-monitor layouts for the two-monitor run.
        const GridDefinition quarters("quarters", "Quarters", {0.5}, {0.5});
        DisplayLayoutsMap displays;
        if (kTwoMonitors) {
            const GridDefinition columns("columns", "Columns", {0.5}, {});
            const GridDefinition rows("rows", "Rows", {}, {0.5});
            const QString left = displayIdAt({10, 10});
            const QString right = displayIdAt({970, 10});
            QVERIFY(!left.isEmpty() && !right.isEmpty() && left != right);
            displays.insert_or_assign(left, DisplayLayouts("columns", {quarters, columns, rows}));
            displays.insert_or_assign(right, DisplayLayouts("rows", {rows, quarters}));
        }
        // Control+Option+N (key code 45): the next layout; Control+Option+L (37): the selector;
        // Control+Option+E (14): the zone editor.
        const std::uint32_t controlOption = modifier_bits::kControl | modifier_bits::kOption;
        config_ = PaneforgeConfig::makeDefault()
                      .copying(displays, quarters, kTwoMonitors ? 0.0 : 10.0)
                      .withOpenEditorHotkey(HotkeyDefinition{14, controlOption})
                      .withNextLayoutHotkey(HotkeyDefinition{45, controlOption})
                      .withOpenLayoutSelectorHotkey(HotkeyDefinition{37, controlOption})
                      .withHasCompletedQuickStart(true);
        QVERIFY(startAgent(config_));
        // With a tray host the icon is shown; without one the agent says so and runs on.
        QVERIFY2(printed_.contains(kComposited ? "icon shown" : "no system tray is running"),
                 qPrintable(printed_));
        logo_ = startClient("xlogo", {"-geometry", "300x200+100+150"});
        QVERIFY(logo_);
    }

    void singleSnapPressedMidDrag() {
        QVERIFY2(grabTitleBarAndPress("super"), qPrintable(logTail()));
        // The zones are up, covering the whole screen (there are no panels).
        QStringList overlay;
        QVERIFY(X11TestSession::waitUntil(
            [&] { return !(overlay = agentWindows("^Paneforge Zones$")).isEmpty(); }));
        QString geometry;
        QVERIFY(xdotool({"getwindowgeometry", overlay.front()}, &geometry));
        QVERIFY2(geometry.contains("Position: 0,0") && geometry.contains("Geometry: 1920x1080"),
                 qPrintable(geometry));
        // Over the top-right zone: root (965, 10) 945 x 525.
        QVERIFY(moveTo(QPoint(1400, 300)) && moveTo(QPoint(1402, 302)));
        QVERIFY2(releaseButtonAndKeys("super"), qPrintable(logTail()));
        QVERIFY(waitUntilClosed("^Paneforge Zones$"));
        QVERIFY2(waitForFrame(fromRoot(965, 10, 945, 525)), qPrintable(failure()));
    }

    void multiSnapTakesTheBoundingBox() {
        QVERIFY2(grabTitleBarAndPress("super+shift", "updateOverlayState match modifiers=768 "
                                                     "mode=multi"),
                 qPrintable(logTail()));
        // Through the top-left and top-right zones, released over the bottom-right one, resting in
        // each a while as a hand would: nothing outside shows which zones the agent has taken.
        for (const QPoint zone : {QPoint(400, 300), QPoint(1400, 300), QPoint(1400, 800)}) {
            QVERIFY(moveTo(zone));
            QTest::qWait(500);
        }
        QVERIFY2(releaseButtonAndKeys("super+shift"), qPrintable(logTail()));
        QVERIFY2(waitForFrame(fromRoot(10, 10, 1900, 1060)), qPrintable(failure()));
    }

    void releasingTheCombinationRestores() {
        QVERIFY(resizeLogo());
        QVERIFY(xdotool({"windowmove", QString::number(logo_), "200", "200"}));
        QVERIFY(X11TestSession::waitUntil([this] { return frame() && frame()->minX() > 150; }));

        QVERIFY2(grabTitleBarAndPress("super"), qPrintable(logTail()));
        const DesktopRect original = *frame();
        QVERIFY(moveTo(QPoint(1400, 700)));
        QTest::qWait(500);
        QVERIFY(frame() && !near(*frame(), original));
        // Let go, the window gets the frame it had when the combination was pressed.
        QVERIFY(xdotool({"keyup", "super"}));
        QVERIFY2(waitForFrame(original), qPrintable(failure()));
        QVERIFY(xdotool({"mouseup", "1"}));
        // Nothing snaps after the combination was let go.
        QTest::qWait(500);
        QVERIFY(frame() && frame()->width() < 400);
    }

    void eachMonitorSnapsToItsOwnLayout_data() {
        QTest::addColumn<QPoint>("pointer");
        QTest::addColumn<DesktopRect>("expected");
        QTest::newRow("left: the right column") << QPoint(700, 500) << fromRoot(480, 0, 480, 1080);
        QTest::newRow("right: the bottom row") << QPoint(1400, 800) << fromRoot(960, 540, 960, 540);
    }

    void eachMonitorSnapsToItsOwnLayout() {
        QFETCH(QPoint, pointer);
        QFETCH(DesktopRect, expected);
        QVERIFY2(snapTo(pointer, expected), qPrintable(failure()));
    }

    void nextLayoutHotkeySwitchesThePointersMonitor() {
        const QString leftId = displayIdAt({10, 10});
        const auto before = session_.activeWindow();
        QVERIFY(moveTo(QPoint(300, 500)) && keys("ctrl+alt+n"));
        QVERIFY2(X11TestSession::waitUntil([&] {
                     const auto displays = config().displays();
                     return displays.contains(leftId) &&
                            displays.at(leftId).activeLayoutId() == "rows";
                 }),
                 qPrintable(logTail()));
        // The heads-up display names it without taking the keyboard, and leaves a second later.
        QVERIFY(X11TestSession::waitUntil(
            [&] { return !agentWindows("^Paneforge Layout$").isEmpty(); }));
        QCOMPARE(session_.activeWindow(), before);
        QVERIFY(waitUntilClosed("^Paneforge Layout$"));
        // The next snap on that monitor takes its rows: the bottom one is root (0, 540) 960 x 540.
        QVERIFY2(snapTo(QPoint(300, 800), fromRoot(0, 540, 960, 540)), qPrintable(failure()));
    }

    void selectorBackdropClosesOnAClick() {
        // The monitor has no layouts: the selector saves one first and shows its card, over a
        // dimmed backdrop, with the keyboard.
        QVERIFY(xdotool({"mousemove", "960", "300"}) && keys("ctrl+alt+l"));
        QVERIFY2(waitForKeyboard("^Switch Layout$"), qPrintable(logTail()));
        QVERIFY(X11TestSession::waitUntil(
            [&] { return !agentWindows("^Paneforge Layout Backdrop$").isEmpty(); }));
        QCOMPARE(config().displays().at(displayIdAt({10, 10})).layouts().size(), std::size_t{1});
        // A click on the backdrop, well away from the panel, closes both.
        QVERIFY(xdotool({"mousemove", "100", "900", "click", "1"}));
        QVERIFY(waitUntilClosed("^Switch Layout$") &&
                waitUntilClosed("^Paneforge Layout Backdrop$"));
    }

    void zoneEditorDrawsALayoutThatSnapsAtOnce() {
        // The right monitor's layout has one horizontal line; its editor opens there, with the
        // keyboard.
        QVERIFY(moveTo(QPoint(1400, 600)) && keys("ctrl+alt+e"));
        QVERIFY2(waitForKeyboard("^Paneforge Zone Editor$"), qPrintable(logTail()));
        const auto click = [this](int x, int y, const QString& button) {
            return xdotool({"mousemove", QString::number(x), QString::number(y), "click", button});
        };
        // Two vertical lines (Shift), one horizontal line, and a right click removes the second
        // vertical line again.
        QVERIFY(xdotool({"keydown", "shift"}));
        QVERIFY(click(1200, 800, "1") && click(1680, 800, "1"));
        QVERIFY(xdotool({"keyup", "shift"}));
        QVERIFY(click(1400, 810, "1"));
        QVERIFY(click(1680, 300, "3"));
        // The old name is selected: typing replaces it.
        QVERIFY(xdotool({"type", "Desk"}) && keys("Return"));
        QVERIFY2(waitUntilClosed("^Paneforge Zone Editor$"), qPrintable(logTail()));

        const auto active =
            DisplayLayoutService().getActiveLayout(config(), displayIdAt({970, 10}));
        QVERIFY(active);
        QCOMPARE(active->name(), QString("Desk"));
        // The next snap there takes the new zones, the vertical line at a quarter, the second
        // horizontal one at three quarters: the bottom-right zone is root (1200, 810) 720 x 270.
        QVERIFY2(snapTo(QPoint(1500, 950), fromRoot(1200, 810, 720, 270)), qPrintable(failure()));
    }

    // Whatever is at the configuration path, a snap ends promptly and sanely: a named pipe or a
    // device is refused rather than read (a pipe froze the agent, a device filled its memory; the
    // snap would never end), and a margin of any size leaves the window on the desktop.
    void hostileConfigurations_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("outcome"); // the log line that ends the snap
        const QString noConfig = "SnapController.snapAndHide config=nil";
        QTest::newRow("named pipe") << "fifo" << noConfig;
        QTest::newRow("device") << "device" << noConfig;
        QTest::newRow("margin -2e9") << "-2e9" << kSetFrame + "requested=";
        QTest::newRow("margin 1e100") << "1e100" << kSetFrame + "refused";
    }

    void hostileConfigurations() {
        QFETCH(QString, kind);
        QFETCH(QString, outcome);
        QVERIFY(resizeLogo());
        const QString path = configHome() + "/Paneforge/config.json";
        QVERIFY(QFile::remove(path));
        if (kind == "fifo") {
            QVERIFY(session_.run("mkfifo", {path}));
        } else if (kind == "device") {
            QVERIFY(QFile::link("/dev/zero", path));
        } else {
            store().saveConfig(config_->withCellMarginPoints(kind.toDouble()));
        }

        QVERIFY2(grabTitleBarAndPress("super"), qPrintable(logTail()));
        QVERIFY(moveTo(QPoint(1400, 300)) && moveTo(QPoint(1402, 302)));
        const int before = logCount(outcome);
        QVERIFY(xdotool({"mouseup", "1"}));
        // A snap applies its frame three times; a failed one ends after one line.
        QVERIFY2(X11TestSession::waitUntil([&] {
                     return logCount(outcome) >= before + (outcome.startsWith("X11") ? 3 : 1);
                 }),
                 qPrintable(logTail()));
        QVERIFY(xdotool({"keyup", "super"}));
        const auto current = frame();
        QVERIFY2(current && current->minX() >= 0 && current->maxX() <= 1920 &&
                     current->minY() >= 0 && current->maxY() <= 1080,
                 qPrintable(failure()));
        QVERIFY(QFile::remove(path));
        store().saveConfig(*config_);
    }

    void cleanupTestCase() {
        // Still running after every drag, the agent quits cleanly when asked.
        QVERIFY2(quit(), qPrintable(logTail()));
    }

private:
    // Relative moves: only they produce the raw motion the agent listens to under Xvfb.
    bool moveTo(QPoint root) {
        const QPoint delta = root - session_.pointer();
        return xdotool(
            {"mousemove_relative", "--", QString::number(delta.x()), QString::number(delta.y())});
    }
    // Presses the left button on the window's title bar, moves a little so the window manager
    // starts moving it, and presses `keys` once the agent saw the drag start.
    bool grabTitleBarAndPress(const QString& keys, const QString& expectedMatch = kSingleMatch) {
        const auto current = frame();
        const int before = logCount(expectedMatch);
        // On the title bar: halfway across, a few pixels below the frame's top edge.
        return current &&
               xdotool({"mousemove", QString::number(int(current->midX())),
                        QString::number(int(kScreenHeight - current->maxY()) + 8)}) &&
               xdotool({"mousedown", "1"}) && xdotool({"mousemove_relative", "--", "4", "4"}) &&
               xdotool({"keydown", keys}) && waitForLog(expectedMatch, before);
    }

    bool releaseButtonAndKeys(const QString& keys) {
        const int before = logCount(kSnapped);
        const int framesBefore = logCount(kSetFrame); // set, then twice more shortly after
        return xdotool({"mouseup", "1"}) && waitForLog(kSnapped, before) &&
               xdotool({"keyup", keys}) &&
               X11TestSession::waitUntil([&] { return logCount(kSetFrame) >= framesBefore + 3; });
    }

    bool snapTo(QPoint root, const DesktopRect& expected) {
        return grabTitleBarAndPress("super") && moveTo(root) && moveTo(root + QPoint(2, 2)) &&
               releaseButtonAndKeys("super") && waitForFrame(expected);
    }
    QString failure() {
        return (frame() ? SnapDiagnosticFormatter::formatRect(*frame()) : "none") + "\n" +
               logText();
    }
    std::optional<DesktopRect> frame() { return X11AgentTest::frame(logo_); }
    bool waitForFrame(const DesktopRect& expected) {
        return X11TestSession::waitUntil([&] {
            const auto current = frame();
            return current && near(*current, expected);
        });
    }
    bool resizeLogo() {
        return xdotool({"windowsize", QString::number(logo_), "300", "200"}) &&
               X11TestSession::waitUntil([this] { return frame() && frame()->width() < 400; });
    }

    std::uint32_t logo_ = 0;
    std::optional<PaneforgeConfig> config_;
};

int main(int argc, char** argv) {
    // Each build runs the cases that fit its desk. Only the overlay's window, the selector's
    // backdrop and the tray differ from the plain desk on the composited one: one snap and one
    // selector show them.
    const QStringList cases =
        kTwoMonitors  ? QStringList{"eachMonitorSnapsToItsOwnLayout",
                                   "nextLayoutHotkeySwitchesThePointersMonitor",
                                   "zoneEditorDrawsALayoutThatSnapsAtOnce"}
        : kComposited ? QStringList{"singleSnapPressedMidDrag", "selectorBackdropClosesOnAClick"}
                      : QStringList{"singleSnapPressedMidDrag", "multiSnapTakesTheBoundingBox",
                                    "releasingTheCombinationRestores", "hostileConfigurations"};
    return runX11Test<AgentSnappingTest>(
        argc, argv,
        {.twoMonitors = kTwoMonitors, .compositor = kComposited, .trayHost = kComposited}, cases);
}

#include "agent_snapping.moc"
