#pragma once

#include "app/ports/key_down_monitor_api.h"

#include <memory>

namespace fakes {

using namespace paneforge;

// One monitor at a time; press() plays a key press in one of Paneforge's windows.
class KeyDownMonitor final : public KeyDownMonitorApi {
public:
    int installed = 0;
    std::shared_ptr<Handler> handler;

    std::unique_ptr<Monitor> addLocalMonitor(Handler h) override {
        auto monitor = std::make_unique<Installed>(*this);
        handler = std::make_shared<Handler>(std::move(h));
        return monitor;
    }
    // Whether the press was swallowed; with no monitor it goes on to the window.
    bool press(std::uint32_t keyCode, std::uint32_t modifiers) {
        const auto keep = handler; // a monitor may be removed while it handles the press
        return keep && (*keep)(KeyPress{keyCode, modifiers});
    }

private:
    struct Installed final : Monitor {
        explicit Installed(KeyDownMonitor& api)
            : api(api) {
            ++api.installed;
        }
        ~Installed() override {
            --api.installed;
            api.handler.reset();
        }
        KeyDownMonitor& api;
    };
};

} // namespace fakes
