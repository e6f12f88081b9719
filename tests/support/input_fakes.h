#pragma once

// In-memory stand-ins for the platform's input services: the event tap (from snap_fakes.h), global
// hot keys and the key-down monitor of Paneforge's own windows.

#include "app/input/hotkey_manager.h"
#include "key_down_monitor_fake.h"
#include "snap_fakes.h"

#include <map>
#include <set>

namespace fakes {

using namespace paneforge;

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
