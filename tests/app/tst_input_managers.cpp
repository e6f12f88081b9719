#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "manual_scheduler.h"

#include <QTest>
#include <map>
#include <set>

using namespace paneforge;

namespace {

struct FakeTap final : EventTapHandle {
    explicit FakeTap(int& live)
        : live(live) {
        ++live;
    }
    ~FakeTap() override { --live; }
    int& live;
};

class FakeEventTaps final : public EventTapApi {
public:
    bool granted = false;
    int requests = 0;
    int creations = 0;
    int liveTaps = 0;
    int enabled = 0;
    std::uint64_t lastMask = 0;
    QStringList lines;

    bool preflightListenEventAccess() override { return granted; }
    bool requestListenEventAccess() override {
        ++requests;
        return granted;
    }
    std::unique_ptr<EventTapHandle> createTap(std::uint64_t mask, InputEventHandler) override {
        ++creations;
        lastMask = mask;
        return granted ? std::make_unique<FakeTap>(liveTaps) : nullptr;
    }
    bool startDelivery(EventTapHandle&) override { return true; }
    void stopDelivery(EventTapHandle&) override {}
    void enableTap(EventTapHandle&) override { ++enabled; }
    void systemLog(const QString& message) override { lines << message; }
};

class FakeHotkeys final : public HotkeyApi {
public:
    std::function<void(std::uint32_t)> pressed;
    std::set<std::uint32_t> refusedKeys;
    std::map<std::uint64_t, std::uint32_t> registered; // handle -> id
    std::uint64_t nextHandle = 100;
    std::uint32_t lastSignature = 0;
    bool handlerRemoved = false;

    void installHandler(std::function<void(std::uint32_t)> onPressed) override {
        pressed = std::move(onPressed);
    }
    void removeHandler() override { handlerRemoved = true; }
    Registration registerHotKey(std::uint32_t keyCode, std::uint32_t, std::uint32_t signature,
                                std::uint32_t id) override {
        lastSignature = signature;
        if (refusedKeys.count(keyCode)) {
            return {Result::Taken, std::nullopt, QStringLiteral("-9878")};
        }
        registered[nextHandle] = id;
        return {Result::Registered, nextHandle++, {}};
    }
    void unregisterHotKey(std::uint64_t handle) override { registered.erase(handle); }
};

void arm(EventTapManager& manager) {
    manager.observeListenEventGrantCleared();
    manager.stopInstalledTap();
    manager.stopRetry();
    manager.attemptInstall();
}

} // namespace

class InputManagersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mask() { QCOMPARE(EventTapManager::eventMask(), std::uint64_t(0x1046)); }

    void retriesEverySecondUntilPermitted() {
        FakeEventTaps api;
        ManualScheduler scheduler;
        NotificationCenter center;
        int installedNotices = 0;
        auto token = center.observe(notifications::kEventTapInstalled, [&] { ++installedNotices; });
        EventTapManager manager(api, scheduler, center);
        manager.setHandler([](const InputEvent&) {});
        arm(manager);
        QCOMPARE(api.requests, 1);
        QCOMPARE(api.lines.count(
                     "EventTapManager.start: requested Input Monitoring access. granted=false"),
                 1);
        QCOMPARE(api.lines.count(
                     "EventTapManager.start: waiting for permissions / event tap availability"),
                 1);
        QVERIFY(manager.isRetrying());
        scheduler.advance(3.0);
        QCOMPARE(api.creations, 4); // the first attempt and one each second
        QCOMPARE(api.requests, 1);  // asked once per cycle
        api.granted = true;
        scheduler.advance(1.0);
        QVERIFY(manager.isTapInstalled());
        QVERIFY(!manager.isRetrying());
        QCOMPARE(installedNotices, 1);
        QCOMPARE(manager.retryIntervalSeconds(), 1.0);
        scheduler.advance(10.0);
        QCOMPARE(api.creations, 5);
        QCOMPARE(api.lastMask, std::uint64_t(0x1046));
    }

    void laterTimerWithoutStopRetryTicksEveryFiveSeconds() {
        FakeEventTaps api;
        ManualScheduler scheduler;
        NotificationCenter center;
        EventTapManager manager(api, scheduler, center);
        manager.setHandler([](const InputEvent&) {});
        arm(manager);
        QCOMPARE(manager.retryIntervalSeconds(), 5.0);
        // Installed, then dropped without stopRetry: the next failure's timer uses 5 s.
        api.granted = true;
        scheduler.advance(1.0);
        manager.stopInstalledTap();
        api.granted = false;
        const int before = api.creations;
        manager.attemptInstall(); // stopRetry ran on success, so this timer is back at 1 s
        scheduler.advance(1.0);
        QCOMPARE(api.creations, before + 2);
        // Now a second timer while the interval is 5 s.
        manager.stopInstalledTap();
        auto* retry = &manager; // without stopRetry the running timer is kept
        retry->attemptInstall();
        QVERIFY(manager.isRetrying());
        QCOMPARE(manager.retryIntervalSeconds(), 5.0);
    }

    void armingTwiceLeavesOneTap() {
        FakeEventTaps api;
        api.granted = true;
        ManualScheduler scheduler;
        NotificationCenter center;
        EventTapManager manager(api, scheduler, center);
        manager.setHandler([](const InputEvent&) {});
        arm(manager);
        arm(manager);
        QCOMPARE(api.liveTaps, 1);
        QVERIFY(!manager.isRetrying());
        QCOMPARE(api.requests, 0);
    }

    void grantClearedStartsOver() {
        FakeEventTaps api;
        api.granted = true;
        ManualScheduler scheduler;
        NotificationCenter center;
        EventTapManager manager(api, scheduler, center);
        manager.setHandler([](const InputEvent&) {});
        arm(manager);
        api.granted = false;
        center.post(notifications::kListenEventGrantCleared);
        QVERIFY(!manager.isTapInstalled());
        QCOMPARE(api.liveTaps, 0);
        QCOMPARE(api.requests, 1); // asked anew
        QVERIFY(manager.isRetrying());
    }

    void noHandlerNoAttempt() {
        FakeEventTaps api;
        ManualScheduler scheduler;
        NotificationCenter center;
        EventTapManager manager(api, scheduler, center);
        arm(manager);
        QCOMPARE(api.creations, 0);
    }

    void hotkeyBookkeeping() {
        FakeHotkeys api;
        ManualScheduler scheduler;
        QStringList log;
        int triggered = 0;
        {
            HotkeyManager manager(api, scheduler, [&](const QString& l) { log << l; });
            manager.registerHotkey(1, {14, 768}, [&] { ++triggered; });
            QCOMPARE(api.lastSignature, HotkeyManager::kSignature);
            QCOMPARE(log, (QStringList{"HotkeyManager.unregister id=1",
                                       "HotkeyManager.register id=1 keyCode=14 modifiers=768"}));
            // Re-registering replaces the platform registration.
            manager.registerHotkey(1, {15, 768}, [&] { triggered += 10; });
            QCOMPARE(api.registered.size(), size_t(1));

            // Triggered asynchronously, not inside the platform handler.
            api.pressed(1);
            QCOMPARE(triggered, 0);
            scheduler.runPosted();
            QCOMPARE(triggered, 10);
            QCOMPARE(log.last(), QStringLiteral("HotkeyManager triggered (id=1)"));
            api.pressed(99); // unknown id: nothing
            scheduler.runPosted();
            QCOMPARE(triggered, 10);

            // A refused registration keeps its callback, and unregisterAll keeps it too.
            api.refusedKeys = {49};
            manager.registerHotkey(2, {49, 256}, [] {});
            QVERIFY(log.contains("RegisterEventHotKey failed: -9878 (id=2)"));
            QVERIFY(manager.hasCallback(2) && !manager.isRegistered(2));
            manager.unregisterAll();
            QVERIFY(manager.hasCallback(2));
            QVERIFY(!manager.hasCallback(1));
            QVERIFY(api.registered.empty());
            log.clear();
            manager.unregister(7);
            QCOMPARE(log, QStringList{"HotkeyManager.unregister id=7"}); // always logged
        }
        QVERIFY(api.handlerRemoved);
    }
};

QTEST_GUILESS_MAIN(InputManagersTest)
#include "tst_input_managers.moc"
