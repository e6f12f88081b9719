#pragma once

#include "app/input/hotkey_manager.h"

#include <functional>
#include <memory>

namespace paneforge {

// HotkeyApi on macOS: Carbon hot keys on the application event target and one handler for their
// "pressed" events. A registration's handle is its EventHotKeyRef.
class MacHotkeyApi final : public HotkeyApi {
public:
    MacHotkeyApi();
    ~MacHotkeyApi() override;
    MacHotkeyApi(const MacHotkeyApi&) = delete;
    MacHotkeyApi& operator=(const MacHotkeyApi&) = delete;

    void installHandler(std::function<void(std::uint32_t id)> onPressed) override;
    void removeHandler() override;
    Registration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                std::uint32_t signature, std::uint32_t id) override;
    void unregisterHotKey(std::uint64_t handle) override;

    // The installed Carbon handler (defined with the adapter).
    struct Installed;

private:
    std::unique_ptr<Installed> installed_;
};

} // namespace paneforge
