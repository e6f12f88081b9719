#pragma once

// A whole platform and view factory of fakes, for the application controller: the desk, windows
// and event tap of snap_fakes.h plus hot keys, keyboard layout, native windows and a status item.

#include "app/ports/platform.h"
#include "app/ports/view_factory.h"
#include "snap_fakes.h"

#include <map>

namespace fakes {

using namespace paneforge;

// Hot keys that register unless their key code is listed as taken.
class Hotkeys final : public HotkeyApi {
public:
    std::function<void(std::uint32_t)> pressed;
    std::map<std::uint64_t, std::uint32_t> registered; // handle -> id
    std::vector<std::uint32_t> takenKeys;
    std::uint64_t nextHandle = 1;

    void installHandler(std::function<void(std::uint32_t)> onPressed) override {
        pressed = std::move(onPressed);
    }
    void removeHandler() override { pressed = nullptr; }
    Registration registerHotKey(std::uint32_t keyCode, std::uint32_t, std::uint32_t,
                                std::uint32_t id) override {
        if (std::find(takenKeys.begin(), takenKeys.end(), keyCode) != takenKeys.end()) {
            return {Result::Taken, std::nullopt, QStringLiteral("taken")};
        }
        registered[nextHandle] = id;
        return {Result::Registered, nextHandle++, {}};
    }
    void unregisterHotKey(std::uint64_t handle) override { registered.erase(handle); }
};

class NoKeyboardLayout final : public KeyboardLayoutProvider, public KeyboardKeyTranslator {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override { return nullptr; }
    std::optional<QString> translate(std::uint32_t, const KeyboardLayout&) const override {
        return std::nullopt;
    }
};

class NativeWindowsRecord final : public NativeWindows {
public:
    std::vector<NativeWindowId> activated;
    void configureOverlayWindow(NativeWindowId) override {}
    void activate(NativeWindowId window) override { activated.push_back(window); }
    bool compositingAvailable() override { return true; }
};

class Platform final : public paneforge::Platform {
public:
    Desk desk;
    Windows windowList;
    EventTaps taps;
    Hotkeys hotkeyApi;
    NoKeyboardLayout layout;
    NativeWindowsRecord native;
    std::function<void()> terminationQuit;

    WindowService& windows() override { return windowList; }
    DisplayService& displays() override { return desk; }
    DisplayFrameService& displayFrames() override { return desk; }
    ScreenListing& screens() override { return desk; }
    EventTapApi& eventTaps() override { return taps; }
    HotkeyApi& hotkeys() override { return hotkeyApi; }
    KeyboardLayoutProvider& keyboardLayout() override { return layout; }
    KeyboardKeyTranslator& keyTranslator() override { return layout; }
    NativeWindows& nativeWindows() override { return native; }
    void quitOnTerminationSignals(std::function<void()> quit) override {
        terminationQuit = std::move(quit);
    }
};

class StatusItem final : public StatusItemView {
public:
    explicit StatusItem(StatusMenuActions actions)
        : actions(std::move(actions)) {}
    StatusMenuActions actions;
    bool show() override { return true; }
};

class NoKeyMonitor final : public KeyDownMonitorApi {
public:
    std::unique_ptr<Monitor> addLocalMonitor(Handler) override { return nullptr; }
};

class Views final : public ViewFactory {
public:
    Overlays overlays;
    NoKeyMonitor keyMonitor;
    int statusItemsMade = 0;
    StatusItem* statusItem = nullptr; // the last one made, owned by the caller
    std::optional<QString> keyWindow;

    SnapOverlayFactory& snapOverlays() override { return overlays; }
    std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) override {
        ++statusItemsMade;
        auto item = std::make_unique<StatusItem>(std::move(actions));
        statusItem = item.get();
        return item;
    }
    KeyDownMonitorApi& keyDownMonitor() override { return keyMonitor; }
    std::optional<QString> keyWindowTitle() override { return keyWindow; }
};

} // namespace fakes
