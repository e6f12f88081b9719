#include "app/input/event_tap_manager.h"
#include "app/runtime/notification_center.h"
#include "app/snapping/snap_controller.h"
#include "bench_harness.h"
#include "config_fixtures.h"
#include "core/input/hotkey_formatter.h"
#include "manual_scheduler.h"
#include "snap_fakes.h"
#include "ui/snap_overlay_window.h"

#include <QApplication>
#include <QTemporaryDir>

// What one pointer movement costs while a snap is armed: the configuration read from disk, the
// display's layout, its cells and frames, the hit test and the overlay update (a real Qt overlay on
// the offscreen platform; the paint itself happens later, on the event loop).
int main(int argc, char** argv) {
    using namespace paneforge;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // The offscreen platform warns on every raise of the overlay.
    qputenv("QT_LOGGING_RULES", "default.warning=false");
    QApplication app(argc, argv);
    QTemporaryDir home;
    ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                      [&] { return home.path(); });
    ManualScheduler scheduler;
    NotificationCenter notifications;
    fakes::Desk desk;
    // Two displays side by side, identified as the fixtures' first two displays.
    desk.addScreen(0, DesktopRect(0, 0, 2560, 1440), DesktopRect(0, 0, 2560, 1415));
    desk.addScreen(1, DesktopRect(2560, 0, 1920, 1080), DesktopRect(2560, 0, 1920, 1080));
    desk.identify = [](DisplayId id) {
        return DisplayIdentifier(1552 + id, 40000 + id,
                                 id % 3 == 0 ? std::nullopt : std::optional<std::int64_t>(id));
    };
    fakes::Windows windows;
    windows.add(1, DesktopRect(0, 0, 4480, 1440));
    fakes::EventTaps taps;
    EventTapManager tapManager(taps, scheduler, notifications);
    QtSnapOverlayFactory overlays(SnapOverlayEnvironment{[] { return QRectF(0, 0, 2560, 1440); },
                                                         [] { return true; }, nullptr});
    SnapController controller(
        SnapControllerServices{store, desk, desk, desk, windows, tapManager, overlays, scheduler,
                               [] { return std::optional<QString>(); }, [](const QString&) {}});

    const std::uint32_t command = ModifierMapper::kCommandFlag;
    const struct {
        const char* name;
        PaneforgeConfig config;
        int runs;
    } cases[] = {{"typical (3 displays x 5 layouts)", fixtures::smallConfig(), 5000},
                 {"large (50 displays x 40 layouts)", fixtures::largeConfig(), 300}};
    for (const auto& c : cases) {
        store.saveConfig(c.config);
        desk.pointer = DesktopPoint(100, 100);
        controller.handleEvent(InputEvent{InputEvent::LeftMouseDown, desk.pointer, 0});
        controller.handleEvent(InputEvent{InputEvent::FlagsChanged, desk.pointer, command});
        int step = 0;
        // Sweeps the pointer across both displays, so the zone under it keeps changing.
        bench::measure(std::string("drag event ") + c.name, c.runs, [&] {
            step = (step + 37) % 4480;
            desk.pointer = DesktopPoint(step, 200 + step % 800);
            controller.handleEvent(InputEvent{InputEvent::LeftMouseDragged, desk.pointer, command});
        });
        controller.handleEvent(InputEvent{InputEvent::LeftMouseUp, desk.pointer, command});
        scheduler.runPosted();
    }
    return 0;
}
