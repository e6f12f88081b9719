#include "platform/macos/mac_hotkey_api.h"

#include <Carbon/Carbon.h>

namespace paneforge {

// The installed Carbon handler and the function it calls; its address is the handler's user data.
struct MacHotkeyApi::Installed {
    std::function<void(std::uint32_t)> onPressed;
    EventHandlerRef ref = nullptr;
};

namespace {

// An EventHandlerProcPtr (HIToolbox/CarbonEventsCore.h) for kEventClassKeyboard /
// kEventHotKeyPressed.
OSStatus hotKeyPressed(EventHandlerCallRef, EventRef event, void* userData) {
    auto* installed = static_cast<MacHotkeyApi::Installed*>(userData);
    if (!installed || !installed->onPressed) {
        return eventNotHandledErr;
    }
    EventHotKeyID hotKeyId{};
    // CarbonEventsCore.h: GetEventParameter(event, name, desired type, actual type, buffer size,
    // actual size, data).
    const OSStatus status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID,
                                              nullptr, sizeof(hotKeyId), nullptr, &hotKeyId);
    if (status != noErr) {
        return status;
    }
    // A copy: the function may remove the handler while it runs.
    const auto onPressed = installed->onPressed;
    onPressed(hotKeyId.id);
    return noErr;
}

} // namespace

MacHotkeyApi::MacHotkeyApi() = default;

MacHotkeyApi::~MacHotkeyApi() {
    removeHandler();
}

void MacHotkeyApi::installHandler(std::function<void(std::uint32_t id)> onPressed) {
    removeHandler();
    auto installed = std::make_unique<Installed>();
    installed->onPressed = std::move(onPressed);
    const EventTypeSpec pressed{kEventClassKeyboard, kEventHotKeyPressed};
    // CarbonEventsCore.h: InstallEventHandler(target, handler, type count, types, user data,
    // handler ref); NewEventHandlerUPP is the function itself in C++.
    if (InstallEventHandler(GetApplicationEventTarget(), NewEventHandlerUPP(&hotKeyPressed), 1,
                            &pressed, installed.get(), &installed->ref) != noErr) {
        return;
    }
    installed_ = std::move(installed);
}

void MacHotkeyApi::removeHandler() {
    if (installed_) {
        RemoveEventHandler(installed_->ref);
        installed_.reset();
    }
}

HotkeyApi::Registration MacHotkeyApi::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                     std::uint32_t signature, std::uint32_t id) {
    EventHotKeyRef ref = nullptr;
    // CarbonEvents.h: RegisterEventHotKey(key code, modifiers, id, target, options, ref). No
    // options: another application's registration of the same combination does not refuse ours.
    const OSStatus status = RegisterEventHotKey(keyCode, modifiers, EventHotKeyID{signature, id},
                                                GetApplicationEventTarget(), 0, &ref);
    Registration registration;
    // CarbonEvents.h: eventHotKeyExistsErr when another registration holds the combination.
    if (status == eventHotKeyExistsErr) {
        registration.result = Result::Taken;
    } else if (status != noErr) {
        registration.result = Result::Refused;
    }
    if (status != noErr) {
        registration.detail = QString::number(status);
    }
    if (ref) {
        registration.handle = reinterpret_cast<std::uintptr_t>(ref);
    }
    return registration;
}

void MacHotkeyApi::unregisterHotKey(std::uint64_t handle) {
    UnregisterEventHotKey(reinterpret_cast<EventHotKeyRef>(static_cast<std::uintptr_t>(handle)));
}

} // namespace paneforge
