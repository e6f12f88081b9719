#pragma once

#include "app/runtime/scheduler.h"
#include "core/diagnostics/diagnostic_log.h"
#include "core/diagnostics/logger_factory.h"
#include "core/input/hotkey_definition.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace paneforge {

// The platform's hot-key service, one call per method.
class HotkeyApi {
public:
    virtual ~HotkeyApi() = default;

    enum class Result {
        Registered,
        Taken,   // another application or the window manager holds the combination
        Refused, // no such key here, no connection, or another platform error
    };
    struct Registration {
        Result result = Result::Registered;
        std::optional<std::uint64_t> handle; // present when the platform returned one
        QString detail; // the platform's own word for a refusal, for the log ("-9878", "BadAccess")
    };

    // Installs the one handler that receives every pressed hot key's id.
    virtual void installHandler(std::function<void(std::uint32_t id)> onPressed) = 0;
    virtual void removeHandler() = 0;
    virtual Registration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                        std::uint32_t signature, std::uint32_t id) = 0;
    virtual void unregisterHotKey(std::uint64_t handle) = 0;
};

// Global hot keys by id. Registering replaces; a refused registration keeps its callback (never
// triggered) until the id is registered again; callbacks run on the next turn of the event loop,
// never inside the platform's handler.
class HotkeyManager {
public:
    using Callback = std::function<void()>;

    static constexpr std::uint32_t kSignature = 0x706E6667; // "pnfg"

    // `fileLog` receives the diagnostic lines that also go to the system log.
    HotkeyManager(HotkeyApi& api, Scheduler& scheduler, DiagnosticLog fileLog);
    ~HotkeyManager();
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    void registerHotkey(std::uint32_t hotkeyId, const HotkeyDefinition& hotkey,
                        Callback onTriggered);
    void unregister(std::uint32_t hotkeyId);
    // Every id with a platform registration; ids holding only a callback keep it.
    void unregisterAll();

    bool hasCallback(std::uint32_t hotkeyId) const { return callbacks_.count(hotkeyId) > 0; }
    bool isRegistered(std::uint32_t hotkeyId) const { return hotKeyRefs_.count(hotkeyId) > 0; }

private:
    void handlePressed(std::uint32_t hotkeyId);
    void log(const QString& line);

    HotkeyApi& api_;
    Scheduler& scheduler_;
    DiagnosticLog fileLog_;
    Logger systemLog_;
    std::map<std::uint32_t, std::uint64_t> hotKeyRefs_;
    std::map<std::uint32_t, Callback> callbacks_;
    std::shared_ptr<HotkeyManager*> self_;
};

} // namespace paneforge
