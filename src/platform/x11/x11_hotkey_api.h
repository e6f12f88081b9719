#pragma once

#include "app/input/hotkey_manager.h"
#include "core/diagnostics/logger_factory.h"
#include "platform/x11/x11_modifier_bits.h"
#include "platform/x11/xcb_client.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

class QSocketNotifier;

namespace paneforge {

// Global hot keys on X11, behind HotkeyApi: a key grab on the root window over a connection of
// its own, for the combination alone and with Num Lock, Caps Lock and both held, so that the lock
// keys do not disable a hot key. Key codes are macOS virtual key codes, mapped to X key codes
// through KeyCodeTable; modifiers are the stored mask (Command is Super, Option is Alt).
//
// The grabs are checked: when another client (often the window manager) holds the combination,
// the server answers BadAccess and the registration is answered Taken, plus a log line that names
// the combination. No variant stays grabbed after a refusal. Pressed keys are read from Qt's event
// loop through a socket notifier; a held key's auto-repeat does not trigger again.
class X11HotkeyApi final : public HotkeyApi {
public:
    // displayName: nullptr for $DISPLAY.
    explicit X11HotkeyApi(const char* displayName = nullptr);
    ~X11HotkeyApi() override;
    X11HotkeyApi(const X11HotkeyApi&) = delete;
    X11HotkeyApi& operator=(const X11HotkeyApi&) = delete;

    bool isConnected() const;

    void installHandler(std::function<void(std::uint32_t id)> onPressed) override;
    void removeHandler() override;
    Registration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                std::uint32_t signature, std::uint32_t id) override;
    void unregisterHotKey(std::uint64_t handle) override;

private:
    struct Grab {
        std::uint8_t keycode = 0;
        std::uint16_t modifiers = 0; // X modifiers without the lock keys
        std::uint16_t numLock = 0;
        std::vector<std::uint16_t> variants; // the grabbed lock-key variants
        std::uint32_t id = 0;
    };

    void ungrab(const Grab& grab);
    void processPendingEvents();
    void processQueuedEventsLater();
    void handleKey(std::uint8_t responseType, std::uint8_t keycode, std::uint16_t state);

    Logger logger_;
    XcbClient client_;
    xcb_connection_t* connection_; // client_'s, for brevity
    xcb_window_t root_;
    X11ModifierBits modifierBits_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::shared_ptr<std::function<void(std::uint32_t)>> handler_;
    std::map<std::uint64_t, Grab> grabs_;
    std::uint64_t nextHandle_ = 1;
    std::set<std::uint8_t> keysDown_;
};

} // namespace paneforge
