#include "app/input/hotkey_manager.h"

namespace paneforge {

HotkeyManager::HotkeyManager(HotkeyApi& api, Scheduler& scheduler, DiagnosticLog fileLog)
    : api_(api)
    , scheduler_(scheduler)
    , fileLog_(std::move(fileLog))
    , systemLog_(LoggerFactory::makeLogger(QStringLiteral("HotkeyManager")))
    , self_(std::make_shared<HotkeyManager*>(this)) {
    std::weak_ptr<HotkeyManager*> weak = self_;
    api_.installHandler([weak](std::uint32_t id) {
        if (const auto self = weak.lock()) {
            (*self)->handlePressed(id);
        }
    });
}

HotkeyManager::~HotkeyManager() {
    unregisterAll();
    api_.removeHandler();
}

void HotkeyManager::log(const QString& line) {
    systemLog_.info(line);
    if (fileLog_) {
        fileLog_(line);
    }
}

void HotkeyManager::registerHotkey(std::uint32_t hotkeyId, const HotkeyDefinition& hotkey,
                                   Callback onTriggered) {
    unregister(hotkeyId);
    callbacks_[hotkeyId] = std::move(onTriggered);
    log(QStringLiteral("HotkeyManager.register id=%1 keyCode=%2 modifiers=%3")
            .arg(hotkeyId)
            .arg(hotkey.keyCode)
            .arg(hotkey.modifiers));
    const auto registration =
        api_.registerHotKey(hotkey.keyCode, hotkey.modifiers, kSignature, hotkeyId);
    if (registration.result != HotkeyApi::Result::Registered) {
        log(QStringLiteral("RegisterEventHotKey failed: %1 (id=%2)")
                .arg(registration.detail)
                .arg(hotkeyId));
    }
    if (registration.handle) {
        hotKeyRefs_[hotkeyId] = *registration.handle;
    }
}

void HotkeyManager::unregister(std::uint32_t hotkeyId) {
    if (const auto it = hotKeyRefs_.find(hotkeyId); it != hotKeyRefs_.end()) {
        api_.unregisterHotKey(it->second);
        hotKeyRefs_.erase(it);
    }
    callbacks_.erase(hotkeyId);
    log(QStringLiteral("HotkeyManager.unregister id=%1").arg(hotkeyId));
}

void HotkeyManager::unregisterAll() {
    std::vector<std::uint32_t> ids;
    for (const auto& [id, handle] : hotKeyRefs_) {
        ids.push_back(id);
    }
    for (const auto id : ids) {
        unregister(id);
    }
}

void HotkeyManager::handlePressed(std::uint32_t hotkeyId) {
    const auto it = callbacks_.find(hotkeyId);
    if (it == callbacks_.end()) {
        return;
    }
    log(QStringLiteral("HotkeyManager triggered (id=%1)").arg(hotkeyId));
    // Never inside the platform's handler: the callback may open windows or re-register keys.
    scheduler_.post(it->second);
}

} // namespace paneforge
