#pragma once

#include "app/ports/key_down_monitor_api.h"
#include "core/input/hotkey_definition.h"

#include <functional>
#include <memory>
#include <optional>

namespace paneforge {

// Records the next key press in Paneforge's own window as a hot key: Escape cancels (reported as
// no hot key), any other key is accepted with whatever modifiers are held, also none. The press
// is swallowed. There is no time-out; recording ends with a press or stop().
class HotkeyRecorder {
public:
    using Recorded = std::function<void(std::optional<HotkeyDefinition>)>;

    explicit HotkeyRecorder(KeyDownMonitorApi& api);
    ~HotkeyRecorder();
    HotkeyRecorder(const HotkeyRecorder&) = delete;
    HotkeyRecorder& operator=(const HotkeyRecorder&) = delete;

    // Replaces a recording in progress. `onRecorded` may start the next recording.
    void start(Recorded onRecorded);
    // Harmless when not recording.
    void stop();
    bool isRecording() const { return monitor_ != nullptr; }

private:
    KeyDownMonitorApi& api_;
    std::unique_ptr<KeyDownMonitorApi::Monitor> monitor_;
};

} // namespace paneforge
