#pragma once

// In-memory stand-ins for the platform's input services: the event tap, global hot keys and the
// key-down monitor of Paneforge's own windows.

#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "key_down_monitor_fake.h"

#include <QStringList>
#include <map>
#include <set>

namespace fakes {

using namespace paneforge;

// Taps are refused until `granted`; `liveTaps` counts the ones not yet dropped.
class InputTaps final : public EventTapApi {
public:
    bool granted = false;
    int requests = 0;
    int creations = 0;
    int liveTaps = 0;
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
        return granted ? std::make_unique<Tap>(liveTaps) : nullptr;
    }
    bool startDelivery(EventTapHandle&) override { return true; }
    void stopDelivery(EventTapHandle&) override {}
    void enableTap(EventTapHandle&) override {}
    void systemLog(const QString& message) override { lines << message; }

private:
    struct Tap final : EventTapHandle {
        explicit Tap(int& count)
            : live(count) {
            ++live;
        }
        ~Tap() override { --live; }
        int& live;
    };
};

// Registrations by handle; keys in `refusedKeys` are refused as the platform refuses a
// combination another program holds.
class Hotkeys final : public HotkeyApi {
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

} // namespace fakes
