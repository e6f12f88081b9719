#include "app/input/hotkey_recorder.h"
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
    fakes::EventTaps api;
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

    using Result = std::optional<HotkeyDefinition>;

private Q_SLOTS:
    void tapRetriesEverySecondUntilPermitted() {
        Taps t(false);
        int installedNotices = 0;
        const auto token =
            t.center.observe(notifications::kEventTapInstalled, [&] { ++installedNotices; });
        t.manager.arm();
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
        t.manager.setHandler(nullptr);
        t.manager.arm(); // nothing to hand events to: no attempt
        QCOMPARE(t.api.creations, 0);
        t.manager.setHandler([](const InputEvent&) {});
        t.manager.arm();
        t.manager.arm();
        QCOMPARE(t.api.liveTaps, 1);
        QVERIFY(!t.manager.isRetrying());
        QCOMPARE(t.api.requests, 0);
    }

    void grantClearedStartsOver() {
        Taps t(true);
        t.manager.arm();
        t.api.granted = false;
        t.center.post(notifications::kListenEventGrantCleared);
        QVERIFY(!t.manager.isTapInstalled());
        QCOMPARE(t.api.liveTaps, 0);
        QCOMPARE(t.api.requests, 1); // asked anew
        QVERIFY(t.manager.isRetrying());
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

    void recordsOnePress_data() {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<Result>("recorded");
        QTest::newRow("escape cancels") << 53u << 0u << Result();
        QTest::newRow("escape with command cancels too") << 53u << 256u << Result();
        QTest::newRow("bare A") << 0u << 0u << Result({0, 0});
        QTest::newRow("all four modifiers") << 14u << 0x1B00u << Result({14, 0x1B00});
        QTest::newRow("return is an ordinary key") << 36u << 256u << Result({36, 256});
        QTest::newRow("foreign bits are not part of the mask")
            << 14u << 0x500u << Result({14, 256});
    }
    void recordsOnePress() {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QFETCH(Result, recorded);
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QList<Result> results;
        recorder.start([&](Result hotkey) { results << hotkey; });
        QVERIFY(recorder.isRecording());
        QVERIFY(api.press(keyCode, modifiers)); // swallowed
        QCOMPARE(results, QList<Result>{recorded});
        QVERIFY(!recorder.isRecording());
        QCOMPARE(api.installed, 0);
        QVERIFY(!api.press(keyCode, modifiers)); // only the first press is recorded
        QCOMPARE(results.size(), 1);
    }

    void startAgainReplacesTheEarlierRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QStringList calls;
        recorder.start([&](Result) { calls << "first"; });
        recorder.start([&](Result) { calls << "second"; });
        QCOMPARE(api.installed, 1);
        api.press(14, 256);
        QCOMPARE(calls, QStringList{"second"});
    }

    void stopIsHarmlessAndEndsRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        recorder.stop();
        int calls = 0;
        recorder.start([&](Result) { ++calls; });
        recorder.stop();
        recorder.stop();
        QVERIFY(!api.press(14, 256));
        QCOMPARE(calls, 0);
        QCOMPARE(api.installed, 0);
    }

    void callbackMayStartTheNextRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QList<std::uint32_t> keys;
        std::function<void(Result)> record = [&](Result hotkey) {
            keys << hotkey->keyCode;
            if (keys.size() == 1) {
                recorder.start(record);
            }
        };
        recorder.start(record);
        api.press(14, 0);
        QVERIFY(recorder.isRecording());
        api.press(15, 0);
        QCOMPARE(keys, (QList<std::uint32_t>{14, 15}));
        QVERIFY(!recorder.isRecording());
    }
};

QTEST_GUILESS_MAIN(InputManagersTest)
#include "tst_input_managers.moc"
