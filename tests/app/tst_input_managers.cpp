#include "input_fakes.h"
#include "manual_scheduler.h"

#include <QTest>

using namespace paneforge;

namespace {

struct Taps {
    explicit Taps(bool granted) {
        api.granted = granted;
        manager.setHandler([](const InputEvent&) {});
    }
    void arm() { manager.arm(); }
    fakes::InputTaps api;
    ManualScheduler scheduler;
    NotificationCenter center;
    EventTapManager manager{api, scheduler, center};
};

struct Hotkeys {
    fakes::Hotkeys api;
    ManualScheduler scheduler;
    QStringList log;
    std::unique_ptr<HotkeyManager> manager =
        std::make_unique<HotkeyManager>(api, scheduler, [this](const QString& l) { log << l; });
};

} // namespace

class InputManagersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tapRetriesEverySecondUntilPermitted() {
        Taps t(false);
        int installedNotices = 0;
        const auto token =
            t.center.observe(notifications::kEventTapInstalled, [&] { ++installedNotices; });
        t.arm();
        QCOMPARE(t.api.lines.count(
                     "EventTapManager.start: requested Input Monitoring access. granted=false"),
                 1);
        QCOMPARE(t.api.lines.count(
                     "EventTapManager.start: waiting for permissions / event tap availability"),
                 1);
        // The running timer keeps its second; a timer made later without stopRetry would not.
        QCOMPARE(t.manager.retryIntervalSeconds(), 5.0);
        t.scheduler.advance(3.0);
        QCOMPARE(t.api.creations, 4); // the first attempt and one each second
        QCOMPARE(t.api.requests, 1);  // asked once per cycle
        QCOMPARE(installedNotices, 0);
        t.api.granted = true;
        t.scheduler.advance(1.0);
        QVERIFY(t.manager.isTapInstalled());
        QVERIFY(!t.manager.isRetrying());
        QCOMPARE(installedNotices, 1);
        QCOMPARE(t.manager.retryIntervalSeconds(), 1.0);
        t.scheduler.advance(10.0);
        QCOMPARE(t.api.creations, 5);
        QCOMPARE(t.api.lastMask, std::uint64_t(0x1046)); // down, dragged, up, flags changed
    }

    void armingTwiceLeavesOneTap() {
        Taps t(true);
        t.arm();
        t.arm();
        QCOMPARE(t.api.liveTaps, 1);
        QVERIFY(!t.manager.isRetrying());
        QCOMPARE(t.api.requests, 0);
    }

    void grantClearedStartsOver() {
        Taps t(true);
        t.arm();
        t.api.granted = false;
        t.center.post(notifications::kListenEventGrantCleared);
        QVERIFY(!t.manager.isTapInstalled());
        QCOMPARE(t.api.liveTaps, 0);
        QCOMPARE(t.api.requests, 1); // asked anew
        QVERIFY(t.manager.isRetrying());
    }

    void noHandlerNoAttempt() {
        Taps t(true);
        t.manager.setHandler(nullptr);
        t.arm();
        QCOMPARE(t.api.creations, 0);
    }

    void reRegisteringReplaces() {
        Hotkeys h;
        h.manager->registerHotkey(3, {14, 768}, [] {});
        h.manager->registerHotkey(3, {15, 768}, [] {});
        QCOMPARE(h.api.lastSignature, HotkeyManager::kSignature);
        QCOMPARE(h.api.registered, (std::map<std::uint64_t, std::uint32_t>{{101, 3}}));
        QCOMPARE(h.log, (QStringList{"HotkeyManager.unregister id=3",
                                     "HotkeyManager.register id=3 keyCode=14 modifiers=768",
                                     "HotkeyManager.unregister id=3",
                                     "HotkeyManager.register id=3 keyCode=15 modifiers=768"}));
    }

    void triggersOnTheNextTurnOnly() {
        Hotkeys h;
        int triggered = 0;
        h.manager->registerHotkey(1, {14, 768}, [&] { ++triggered; });
        h.api.pressed(1);
        QCOMPARE(triggered, 0); // not inside the platform's handler
        h.scheduler.runPosted();
        QCOMPARE(triggered, 1);
        QCOMPARE(h.log.last(), QStringLiteral("HotkeyManager triggered (id=1)"));
        h.api.pressed(99);
        h.scheduler.runPosted();
        QCOMPARE(triggered, 1);
    }

    void refusedRegistrationKeepsItsCallback() {
        Hotkeys h;
        h.api.refusedKeys = {49};
        h.manager->registerHotkey(1, {14, 256}, [] {});
        h.manager->registerHotkey(2, {49, 256}, [] {});
        QVERIFY(h.log.contains("RegisterEventHotKey failed: -9878 (id=2)"));
        QVERIFY(h.manager->hasCallback(2) && !h.manager->isRegistered(2));
        h.manager->unregisterAll();
        QVERIFY(h.api.registered.empty());
        QVERIFY(!h.manager->hasCallback(1));
        QVERIFY(h.manager->hasCallback(2));
        h.manager->unregister(2);
        QVERIFY(!h.manager->hasCallback(2));
        h.log.clear();
        h.manager->unregister(7); // never registered: logged all the same
        QCOMPARE(h.log, QStringList{"HotkeyManager.unregister id=7"});
        h.manager.reset();
        QVERIFY(h.api.handlerRemoved);
    }
};

QTEST_GUILESS_MAIN(InputManagersTest)
#include "tst_input_managers.moc"
