#include "app/input/hotkey_recorder.h"

#include "core/input/key_code_table.h"

namespace paneforge {

namespace {
constexpr std::uint32_t kAllModifiers = modifier_bits::kCommand | modifier_bits::kShift |
                                        modifier_bits::kOption | modifier_bits::kControl;
} // namespace

HotkeyRecorder::HotkeyRecorder(KeyDownMonitorApi& api)
    : api_(api) {}

HotkeyRecorder::~HotkeyRecorder() {
    stop();
}

void HotkeyRecorder::start(Recorded onRecorded) {
    stop();
    monitor_ =
        api_.addLocalMonitor([this, onRecorded = std::move(onRecorded)](const KeyPress& press) {
            // The monitor keeps this handler alive while it runs, also once stop() dropped it;
            // so the callback may start the next recording.
            stop();
            if (press.keyCode == mac_key_codes::kEscape) {
                onRecorded(std::nullopt);
            } else {
                onRecorded(HotkeyDefinition{press.keyCode, press.modifiers & kAllModifiers});
            }
            return true;
        });
}

void HotkeyRecorder::stop() {
    monitor_.reset();
}

} // namespace paneforge
