// The real agent under Xvfb and openbox: windows dragged by their title bar with xdotool, a snap
// combination pressed mid-drag, and the window's outer frame checked where it lands; on two
// monitors also a layout drawn in the zone editor with the mouse and snapped to at once. Built
// three times: one monitor without a compositor or tray, one with both, and two monitors.

#include "core/config/config_store.h"
#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "core/layouts/display_layout_service.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

using namespace paneforge;

namespace {

#if defined(AGENT_TEST_TWO_MONITORS)
constexpr bool kTwoMonitors = true;
#else
constexpr bool kTwoMonitors = false;
#endif
#if defined(AGENT_TEST_COMPOSITED)
constexpr bool kComposited = true;
#else
constexpr bool kComposited = false;
#endif
constexpr int kScreenHeight = 1080;

// A root-space rectangle (top-left origin) in desktop space.
DesktopRect fromRoot(double x, double y, double width, double height) {
    return DesktopRect(x, kScreenHeight - y - height, width, height);
}

bool near(const DesktopRect& a, const DesktopRect& b) {
    return std::abs(a.minX() - b.minX()) <= 1 && std::abs(a.minY() - b.minY()) <= 1 &&
           std::abs(a.width() - b.width()) <= 1 && std::abs(a.height() - b.height()) <= 1;
}

QString describe(const std::optional<DesktopRect>& rect) {
    return rect ? SnapDiagnosticFormatter::formatRect(*rect) : QString("none");
}

} // namespace

class AgentSnappingTest : public QObject {
    Q_OBJECT

public:
    explicit AgentSnappingTest(X11TestSession& session)
        : session_(session) {}

private Q_SLOTS:
    void initTestCase();
    void singleSnapPressedMidDrag();
    void multiSnapTakesTheBoundingBox();
    void releasingTheCombinationRestores();
    void eachMonitorSnapsToItsOwnLayout();
    void nextLayoutHotkeySwitchesThePointersMonitor();
    void selectorBackdropClosesOnAClick();
    void zoneEditorDrawsALayoutThatSnapsAtOnce();
    void hostileConfigurations_data();
    void hostileConfigurations();
    void cleanupTestCase();

private:
    QString logText() const { return agent_.logText(); }
    bool waitForLog(const QString& line, int before) const {
        return agent_.waitForLog(line, before);
    }
    int logCount(const QString& line) const { return agent_.logCount(line); }
    void saveConfig(const PaneforgeConfig& config) {
        ConfigStore(LoggerFactory::makeLogger("Test"), [this] {
            return agent_.configHome();
        }).saveConfig(config);
    }
    bool xdotool(const QStringList& arguments) { return session_.run("xdotool", arguments); }
    QPoint pointer() {
        QString output;
        session_.run("xdotool", {"getmouselocation"}, &output);
        // "x:123 y:456 screen:0 window:789"
        const QStringList parts = output.split(QLatin1Char(' '));
        return QPoint(parts.value(0).mid(2).toInt(), parts.value(1).mid(2).toInt());
    }
    // Relative moves: only they produce the raw motion the agent listens to under Xvfb.
    bool moveTo(QPoint root) {
        const QPoint delta = root - pointer();
        return xdotool(
            {"mousemove_relative", "--", QString::number(delta.x()), QString::number(delta.y())});
    }
    // Presses the left button on the window's title bar, moves a little so the window manager
    // starts moving it, and presses `keys` once the agent saw the drag start.
    bool grabTitleBarAndPress(const QString& keys, const QString& expectedMatch);
    void releaseButtonAndKeys(const QString& keys);
    // The zone overlay, if it is mapped.
    bool overlayWindow(QString* id) {
        const QStringList found = session_.visibleWindows({}, "^Paneforge Zones$");
        if (id) {
            *id = found.value(0);
        }
        return !found.isEmpty();
    }
    bool headsUpDisplayShown() {
        return !session_.visibleWindows({}, "^Paneforge Layout$").isEmpty();
    }
    std::optional<DesktopRect> frame() { return windows_.frame(X11WindowService::wrap(logo_)); }
    bool waitForFrame(const DesktopRect& expected) {
        return X11TestSession::waitUntil([&] {
            const auto current = frame();
            return current && near(*current, expected);
        });
    }

    X11TestSession& session_;
    X11AgentRun agent_{session_};
    X11Connection connection_;
    X11DisplayServices displays_{connection_};
    ManualScheduler scheduler_;
    X11WindowService windows_{connection_, scheduler_, [](const QString&) {}};
    std::uint32_t logo_ = 0;
    std::optional<PaneforgeConfig> config_;
};

bool AgentSnappingTest::grabTitleBarAndPress(const QString& keys, const QString& expectedMatch) {
    const auto current = frame();
    if (!current) {
        return false;
    }
    // A point on the title bar: the frame's top edge, a few pixels down, halfway across.
    const QPoint grab(static_cast<int>(current->midX()),
                      static_cast<int>(kScreenHeight - current->maxY()) + 8);
    const int before = logCount(expectedMatch);
    return xdotool({"mousemove", QString::number(grab.x()), QString::number(grab.y())}) &&
           xdotool({"mousedown", "1"}) && xdotool({"mousemove_relative", "--", "4", "4"}) &&
           xdotool({"keydown", keys}) && waitForLog(expectedMatch, before);
}

void AgentSnappingTest::releaseButtonAndKeys(const QString& keys) {
    const int before = logCount("SnapController.snapAndHide window ");
    const int framesBefore = logCount("X11WindowService.setFrame ");
    QVERIFY(xdotool({"mouseup", "1"}));
    QVERIFY2(waitForLog("SnapController.snapAndHide window ", before), qPrintable(logText()));
    QVERIFY(xdotool({"keyup", keys}));
    // The frame is set, then set twice more shortly after; let all three land.
    QVERIFY2(X11TestSession::waitUntil(
                 [&] { return logCount("X11WindowService.setFrame ") >= framesBefore + 3; }),
             qPrintable(logText()));
}

void AgentSnappingTest::initTestCase() {
    QVERIFY(connection_.isValid());
    if (kTwoMonitors) {
        QVERIFY(X11TestSession::waitUntil(
            [this] { return displays_.getActiveDisplays().size() == 2; }));
    }
    // 2 x 2 with 10-point margins everywhere; per-monitor layouts for the two-monitor run.
    const GridDefinition quarters("quarters", "Quarters", {0.5}, {0.5});
    DisplayLayoutsMap displays;
    if (kTwoMonitors) {
        const GridDefinition columns("columns", "Columns", {0.5}, {});
        const GridDefinition rows("rows", "Rows", {}, {0.5});
        const auto left = displays_.getDisplayId({10, 10});
        const auto right = displays_.getDisplayId({970, 10});
        QVERIFY(left && right && *left != *right);
        displays.insert_or_assign(displays_.getIdentifier(*left).stableId(),
                                  DisplayLayouts("columns", {quarters, columns, rows}));
        displays.insert_or_assign(displays_.getIdentifier(*right).stableId(),
                                  DisplayLayouts("rows", {rows, quarters}));
    }
    // Control+Option+N (key code 45): the next layout; Control+Option+L (37): the selector;
    // Control+Option+E (14): the zone editor.
    config_ = PaneforgeConfig::makeDefault()
                  .copying(displays, quarters, kTwoMonitors ? 0.0 : 10.0)
                  .withOpenEditorHotkey(
                      HotkeyDefinition{14, modifier_bits::kControl | modifier_bits::kOption})
                  .withNextLayoutHotkey(
                      HotkeyDefinition{45, modifier_bits::kControl | modifier_bits::kOption})
                  .withOpenLayoutSelectorHotkey(
                      HotkeyDefinition{37, modifier_bits::kControl | modifier_bits::kOption})
                  .withHasCompletedQuickStart(true);
    saveConfig(*config_);

    QString agentOutput;
    QVERIFY2(agent_.start(PANEFORGE_AGENT, &agentOutput), qPrintable(agentOutput));
    QVERIFY2(agentOutput.contains("event tap installed"), qPrintable(agentOutput));
    // With a tray host the icon is shown; without one the agent says so and runs on.
    QVERIFY2(agentOutput.contains(kComposited ? "icon shown" : "no system tray is running"),
             qPrintable(agentOutput));
    for (const auto& reason : {QString("appStart"), QString("snapStart")}) {
        QVERIFY(logText().contains(
            QString("ScreenDiagnostics.%1 count=%2").arg(reason).arg(kTwoMonitors ? 2 : 1)));
    }

    QString error;
    const auto logo = session_.startClient("xlogo", {"-geometry", "300x200+100+150"}, &error);
    QVERIFY2(logo, qPrintable(error));
    logo_ = *logo;
    QVERIFY(X11TestSession::waitUntil([this] { return frame().has_value(); }));
}

void AgentSnappingTest::singleSnapPressedMidDrag() {
    QVERIFY2(grabTitleBarAndPress("super", QStringLiteral("updateOverlayState match modifiers=256 "
                                                          "mode=single")),
             qPrintable(logText()));
    // The zones are up, covering the whole screen (there are no panels).
    QString overlay;
    QVERIFY(X11TestSession::waitUntil([&] { return overlayWindow(&overlay); }));
    QString geometry;
    QVERIFY(session_.run("xdotool", {"getwindowgeometry", overlay.trimmed()}, &geometry));
    QVERIFY2(geometry.contains("Position: 0,0") && geometry.contains("Geometry: 1920x1080"),
             qPrintable(geometry));
    // Over the top-right zone: root (965, 10) 945 x 525.
    QVERIFY(moveTo(QPoint(1400, 300)));
    QVERIFY(moveTo(QPoint(1402, 302)));
    releaseButtonAndKeys("super");
    QVERIFY(X11TestSession::waitUntil([&] { return !overlayWindow(nullptr); }));
    const DesktopRect expected = fromRoot(965, 10, 945, 525);
    QVERIFY2(waitForFrame(expected), qPrintable(describe(frame()) + "\n" + logText()));
    // xlogo names itself only in WM_NAME, as a STRING.
    QVERIFY2(logText().contains(" title=xlogo "), qPrintable(logText()));
}

void AgentSnappingTest::multiSnapTakesTheBoundingBox() {
    QVERIFY2(
        grabTitleBarAndPress("super+shift", QStringLiteral("updateOverlayState match modifiers=768 "
                                                           "mode=multi")),
        qPrintable(logText()));
    // Through the top-left and top-right zones, released over the bottom-right one. The agent
    // coalesces motion it reads in one go, and nothing outside shows which zones it has taken,
    // so the pointer rests in each zone for a while, as a hand would.
    for (const QPoint zone : {QPoint(400, 300), QPoint(1400, 300), QPoint(1400, 800)}) {
        QVERIFY(moveTo(zone));
        QTest::qWait(500);
    }
    releaseButtonAndKeys("super+shift");
    QVERIFY(logText().contains("selected=3"));
    QVERIFY2(waitForFrame(fromRoot(10, 10, 1900, 1060)),
             qPrintable(describe(frame()) + "\n" + logText()));
}

void AgentSnappingTest::releasingTheCombinationRestores() {
    // Start from a free-floating frame.
    QVERIFY(xdotool({"windowsize", QString::number(logo_), "300", "200"}));
    QVERIFY(xdotool({"windowmove", QString::number(logo_), "200", "200"}));
    QVERIFY(X11TestSession::waitUntil([this] {
        const auto current = frame();
        return current && current->width() < 400 && current->minX() > 150;
    }));

    QVERIFY2(grabTitleBarAndPress("super", QStringLiteral("updateOverlayState match modifiers=256 "
                                                          "mode=single")),
             qPrintable(logText()));
    const DesktopRect original = *frame();
    QVERIFY(moveTo(QPoint(1400, 700)));
    QTest::qWait(500);
    const int before = logCount("updateOverlayState noMatch modifiers=0");
    QVERIFY(xdotool({"keyup", "super"}));
    QVERIFY(waitForLog("updateOverlayState noMatch modifiers=0", before));
    // The frame it had when the combination was pressed, position included.
    QVERIFY2(waitForFrame(original),
             qPrintable(describe(frame()) + " expected " + describe(original)));
    QVERIFY(xdotool({"mouseup", "1"}));
    // Nothing snaps after the combination was let go.
    QTest::qWait(500);
    QVERIFY(frame() && frame()->width() < 400);
}

void AgentSnappingTest::eachMonitorSnapsToItsOwnLayout() {
    // Left monitor: two columns; its right column is root (480, 0) 480 x 1080.
    QVERIFY2(grabTitleBarAndPress("super", "updateOverlayState match modifiers=256"),
             qPrintable(logText()));
    QVERIFY(moveTo(QPoint(700, 500)));
    QVERIFY(moveTo(QPoint(702, 502)));
    releaseButtonAndKeys("super");
    QVERIFY2(waitForFrame(fromRoot(480, 0, 480, 1080)),
             qPrintable(describe(frame()) + "\n" + logText()));
    QVERIFY(logText().contains("layout=columns"));

    // Right monitor: two rows; its bottom row is root (960, 540) 960 x 540.
    QVERIFY2(grabTitleBarAndPress("super", "updateOverlayState match modifiers=256"),
             qPrintable(logText()));
    QVERIFY(moveTo(QPoint(1400, 800)));
    QVERIFY(moveTo(QPoint(1402, 802)));
    releaseButtonAndKeys("super");
    QVERIFY2(waitForFrame(fromRoot(960, 540, 960, 540)),
             qPrintable(describe(frame()) + "\n" + logText()));
    QVERIFY(logText().contains("layout=rows"));
}

void AgentSnappingTest::nextLayoutHotkeySwitchesThePointersMonitor() {
    const auto left = displays_.getDisplayId({10, 10});
    QVERIFY(left);
    const QString leftId = displays_.getIdentifier(*left).stableId();
    const auto before = session_.activeWindow();
    QVERIFY(moveTo(QPoint(300, 500)));
    const int cycles = logCount(QStringLiteral("LayoutCycleController.cycleNext "));
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+n")}));
    QVERIFY2(waitForLog(QStringLiteral("LayoutCycleController.cycleNext display=") + leftId +
                            QStringLiteral(" active=rows"),
                        cycles),
             qPrintable(logText()));
    const PaneforgeConfig saved = ConfigStore(LoggerFactory::makeLogger("Test"), [this] {
                                      return agent_.configHome();
                                  }).loadConfig();
    QCOMPARE(saved.displays().at(leftId).activeLayoutId(), QStringLiteral("rows"));
    // The heads-up display names it without taking the keyboard, and leaves a second later.
    QVERIFY(X11TestSession::waitUntil([&] { return headsUpDisplayShown(); }));
    QCOMPARE(session_.activeWindow(), before);
    QVERIFY(X11TestSession::waitUntil([&] { return !headsUpDisplayShown(); }));

    // The next snap on that monitor takes its rows: the bottom one is root (0, 540) 960 x 540.
    QVERIFY2(grabTitleBarAndPress(QStringLiteral("super"),
                                  QStringLiteral("updateOverlayState match modifiers=256")),
             qPrintable(logText()));
    QVERIFY(moveTo(QPoint(300, 800)));
    QVERIFY(moveTo(QPoint(302, 802)));
    releaseButtonAndKeys(QStringLiteral("super"));
    QVERIFY2(waitForFrame(fromRoot(0, 540, 960, 540)),
             qPrintable(describe(frame()) + "\n" + logText()));
}

void AgentSnappingTest::selectorBackdropClosesOnAClick() {
    // The monitor has no layouts: the selector saves one first and shows its card, over a dimmed
    // backdrop, with the keyboard.
    const auto display = displays_.getDisplayId({10, 10});
    QVERIFY(display);
    const QString stableId = displays_.getIdentifier(*display).stableId();
    QVERIFY(xdotool({QStringLiteral("mousemove"), QStringLiteral("960"), QStringLiteral("300")}));
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+l")}));
    const auto shown = [this](const char* name) {
        return session_.visibleWindows({}, QString::fromLatin1(name)).join(QLatin1Char(' '));
    };
    QVERIFY2(X11TestSession::waitUntil([&] {
                 return !shown("^Paneforge Layout Backdrop$").isEmpty() &&
                        shown("^Switch Layout$") == QString::number(session_.activeWindow());
             }),
             qPrintable(logText()));
    const PaneforgeConfig saved = ConfigStore(LoggerFactory::makeLogger("Test"), [this] {
                                      return agent_.configHome();
                                  }).loadConfig();
    QCOMPARE(saved.displays().at(stableId).layouts().size(), std::size_t{1});
    // A click on the backdrop, well away from the panel, closes both.
    QVERIFY(xdotool({QStringLiteral("mousemove"), QStringLiteral("100"), QStringLiteral("900"),
                     QStringLiteral("click"), QStringLiteral("1")}));
    QVERIFY(X11TestSession::waitUntil([&] {
        return shown("^Switch Layout$").isEmpty() && shown("^Paneforge Layout Backdrop$").isEmpty();
    }));
}

void AgentSnappingTest::zoneEditorDrawsALayoutThatSnapsAtOnce() {
    // The right monitor's layout has one horizontal line; its editor opens there, over root
    // (960, 0) 960 x 1080, with the keyboard.
    const auto right = displays_.getDisplayId({970, 10});
    QVERIFY(right);
    const QString rightId = displays_.getIdentifier(*right).stableId();
    QVERIFY(moveTo(QPoint(1400, 600)));
    QVERIFY(xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+e")}));
    QStringList editor;
    QVERIFY2(X11TestSession::waitUntil([&] {
                 editor = session_.visibleWindows({}, QStringLiteral("^Paneforge Zone Editor$"));
                 return editor.size() == 1 &&
                        editor.front() == QString::number(session_.activeWindow());
             }),
             qPrintable(logText()));
    QString geometry;
    QVERIFY(session_.run("xdotool", {"getwindowgeometry", editor.front()}, &geometry));
    QVERIFY2(geometry.contains("Position: 960,0") && geometry.contains("Geometry: 960x1080"),
             qPrintable(geometry));
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
    QVERIFY(xdotool({"type", "Desk"}) && xdotool({"key", "Return"}));
    QVERIFY2(X11TestSession::waitUntil([&] {
                 QString output;
                 session_.run(QStringLiteral("xdotool"),
                              {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                               QStringLiteral("--name"), QStringLiteral("^Paneforge Zone Editor$")},
                              &output);
                 return output.trimmed().isEmpty();
             }),
             qPrintable(logText()));

    const PaneforgeConfig saved = ConfigStore(LoggerFactory::makeLogger("Test"), [this] {
                                      return agent_.configHome();
                                  }).loadConfig();
    const auto active = DisplayLayoutService().getActiveLayout(saved, rightId);
    QVERIFY(active);
    const QString drawn = QString("%1 v=%2 h=%3")
                              .arg(active->name())
                              .arg(active->verticalSplits().size())
                              .arg(active->horizontalSplits().size());
    QCOMPARE(drawn, QString("Desk v=1 h=2"));
    QVERIFY(std::abs(active->verticalSplits()[0] - 0.25) < 0.002);
    QVERIFY(std::abs(active->horizontalSplits()[1] - 0.75) < 0.002);

    // The next snap there takes the new zones: the bottom-right one is root (1200, 810) 720 x 270.
    QVERIFY2(grabTitleBarAndPress(QStringLiteral("super"),
                                  QStringLiteral("updateOverlayState match modifiers=256")),
             qPrintable(logText()));
    QVERIFY(moveTo(QPoint(1500, 950)));
    QVERIFY(moveTo(QPoint(1502, 952)));
    releaseButtonAndKeys(QStringLiteral("super"));
    QVERIFY2(waitForFrame(fromRoot(1200, 810, 720, 270)),
             qPrintable(describe(frame()) + "\n" + logText()));
}

// Whatever is at the configuration path, a snap ends promptly and sanely: a named pipe or a device
// is refused rather than read (a pipe froze the agent, a device filled its memory), and a margin
// of any size leaves the window on the desktop or where it was.
void AgentSnappingTest::hostileConfigurations_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<double>("margin");
    QTest::addColumn<QString>("outcome"); // the log line that ends the snap
    QTest::addColumn<bool>("fillsTheScreen");
    QTest::newRow("named pipe") << "fifo" << 0.0 << "SnapController.snapAndHide config=nil"
                                << false;
    QTest::newRow("device") << "device" << 0.0 << "SnapController.snapAndHide config=nil" << false;
    QTest::newRow("margin -2e9") << "margin" << -2e9
                                 << "X11WindowService.setFrame requested=" << true;
    QTest::newRow("margin 1e100") << "margin" << 1e100 << "X11WindowService.setFrame refused"
                                  << false;
}

void AgentSnappingTest::hostileConfigurations() {
    QFETCH(QString, kind);
    QFETCH(double, margin);
    QFETCH(QString, outcome);
    QFETCH(bool, fillsTheScreen);
    QVERIFY(xdotool({"windowsize", QString::number(logo_), "300", "200"}));
    QVERIFY(X11TestSession::waitUntil([this] { return frame() && frame()->width() < 400; }));
    const QString path = agent_.configHome() + "/Paneforge/config.json";
    QVERIFY(QFile::remove(path));
    if (kind == "fifo") {
        QVERIFY(session_.run("mkfifo", {path}));
    } else if (kind == "device") {
        QVERIFY(QFile::link("/dev/zero", path));
    } else {
        saveConfig(config_->withCellMarginPoints(margin));
    }

    QVERIFY2(grabTitleBarAndPress("super", QStringLiteral("updateOverlayState match modifiers=256 "
                                                          "mode=single")),
             qPrintable(logText()));
    QVERIFY(moveTo(QPoint(1400, 300)));
    QVERIFY(moveTo(QPoint(1402, 302)));
    const int before = logCount(outcome);
    QVERIFY(xdotool({"mouseup", "1"}));
    // A snap applies its frame three times; a failed one ends after one line.
    QVERIFY2(X11TestSession::waitUntil(
                 [&] { return logCount(outcome) >= before + (kind == "margin" ? 3 : 1); }),
             qPrintable(logText()));
    QVERIFY(xdotool({"keyup", "super"}));
    if (fillsTheScreen) {
        QVERIFY2(waitForFrame(fromRoot(0, 0, 1920, 1080)), qPrintable(describe(frame())));
    } else {
        const auto current = frame();
        QVERIFY2(current && current->width() < 400 && current->minX() >= 0 &&
                     current->maxX() <= 1920 && current->minY() >= 0 && current->maxY() <= 1080,
                 qPrintable(describe(current)));
    }
    // Bounded memory, whatever was read: a device once took gigabytes within seconds.
    QFile status(QString("/proc/%1/status").arg(agent_.process()->processId()));
    QVERIFY(status.open(QIODevice::ReadOnly));
    const QString peak = QString::fromLatin1(status.readAll())
                             .section(QString("VmHWM:"), 1)
                             .section(QString("kB"), 0, 0)
                             .trimmed();
    QVERIFY2(peak.toLongLong() > 0 && peak.toLongLong() < 1024 * 1024, qPrintable(peak));

    QVERIFY(QFile::remove(path));
    saveConfig(*config_);
}

void AgentSnappingTest::cleanupTestCase() {
    // The agent must still be running after every drag, and quit cleanly when asked.
    QVERIFY(agent_.process() && agent_.process()->state() == QProcess::Running);
    QVERIFY2(agent_.quit(), qPrintable(logText()));
}

int main(int argc, char** argv) {
    X11TestSession::Options options;
    options.twoMonitors = kTwoMonitors;
    options.compositor = kComposited;
    options.trayHost = kComposited;
    return runWithX11Session(argc, argv, options, [&](X11TestSession& session) {
        AgentSnappingTest test(session);
        // Each build runs the cases that fit its desk.
        QStringList arguments;
        for (int i = 0; i < argc; ++i) {
            arguments << QString::fromLocal8Bit(argv[i]);
        }
        if (kTwoMonitors) {
            arguments << "eachMonitorSnapsToItsOwnLayout"
                      << "nextLayoutHotkeySwitchesThePointersMonitor"
                      << "zoneEditorDrawsALayoutThatSnapsAtOnce";
        } else if (kComposited) {
            // Only the overlay's window, the selector's backdrop and the tray differ from the
            // plain desk: one snap and one selector show them.
            arguments << "singleSnapPressedMidDrag"
                      << "selectorBackdropClosesOnAClick";
        } else {
            arguments << "singleSnapPressedMidDrag"
                      << "multiSnapTakesTheBoundingBox"
                      << "releasingTheCombinationRestores"
                      << "hostileConfigurations";
        }
        return QTest::qExec(&test, arguments);
    });
}

#include "agent_snapping.moc"
