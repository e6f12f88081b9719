#include "app/input/hotkey_recorder.h"
#include "manual_scheduler.h"
#include "platform_fakes.h"

#include <QTest>

using namespace paneforge;

namespace {

struct Taps {
    explicit Taps(bool granted) {
        api.granted = granted;
        manager.setHandler([](const InputEvent&) {});
    }
    fakes::EventTaps api;
    ManualScheduler scheduler;
    NotificationCenter center;
    EventTapManager manager{api, scheduler, center};
};

struct Hotkeys {
    fakes::Hotkeys api;
    ManualScheduler scheduler;
    std::unique_ptr<HotkeyManager> manager =
        std::make_unique<HotkeyManager>(api, scheduler, [](const QString&) {});
};

} // namespace

// Over the real server, a refused combination included: tst_x11_input.
class InputManagersTest : public QObject {
    Q_OBJECT

    using Result = std::optional<HotkeyDefinition>;

private Q_SLOTS:
    void tapRetriesEverySecondUntilPermitted() {
        Taps t(false);
        int installedNotices = 0;
        const auto token =
            t.center.observe(notifications::kEventTapInstalled, [&] { ++installedNotices; });
        t.manager.arm();
        t.scheduler.advance(3.0);
        QCOMPARE(t.api.creations, 4); // the first attempt and one each second
        QCOMPARE(t.api.requests, 1);  // asked once per cycle
        t.api.granted = true;
        t.scheduler.advance(1.0);
        QVERIFY(t.manager.isTapInstalled() && !t.manager.isRetrying());
        QCOMPARE(installedNotices, 1);
        t.scheduler.advance(10.0);
        QCOMPARE(t.api.creations, 5);
    }

    void grantClearedStartsOver() {
        Taps t(true);
        t.manager.arm();
        t.api.granted = false;
        t.center.post(notifications::kListenEventGrantCleared);
        QCOMPARE(t.api.liveTaps, 0);
        QCOMPARE(t.api.requests, 1); // asked anew
        QVERIFY(t.manager.isRetrying());
    }

    void hotkeysTriggerOnTheNextTurnAndGoWithTheManager() {
        Hotkeys h;
        int triggered = 0;
        h.manager->registerHotkey(1, {14, 768}, [&] { ++triggered; });
        h.manager->registerHotkey(1, {15, 768}, [&] { ++triggered; }); // replaces
        QCOMPARE(h.api.registered, (std::map<std::uint64_t, std::uint32_t>{{101, 1}}));
        h.api.pressed(1);
        QCOMPARE(triggered, 0); // not inside the platform's handler
        h.scheduler.runPosted();
        QCOMPARE(triggered, 1);
        h.manager.reset();
        QVERIFY(h.api.registered.empty() && h.api.handlerRemoved);
    }

    // Caps Lock (0x400) is no part of a recorded combination.
    void recordingKeepsOnlyTheModifierBits() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        Result result;
        recorder.start([&](Result hotkey) { result = hotkey; });
        QVERIFY(api.press(14, 0x500));
        QCOMPARE(result, std::optional(HotkeyDefinition{14, 256}));
    }
};

QTEST_GUILESS_MAIN(InputManagersTest)
#include "tst_input_managers.moc"
