#pragma once

#include "app/input/hotkey_recorder.h"
#include "app/ports/preferences_view.h"
#include "app/ports/shell_services.h"
#include "app/ports/shell_windows.h"
#include "app/ports/view_factory.h"
#include "app/preferences/preferences_controller.h"
#include "core/input/hotkey_formatter.h"
#include "core/policies/platform_words.h"

#include <functional>
#include <memory>
#include <optional>

namespace paneforge {

struct PreferencesWindowServices {
    PreferencesController& preferences;
    // Makes the window on first use and watches key presses in it for recording.
    ViewFactory& views;
    const KeyboardLayoutProvider& keyboardLayout;
    const KeyboardKeyTranslator& keyTranslator;
    // Whether launch at login can apply to this copy at all.
    LoginItemService& loginItems;
    std::function<void(const QString&)> fileLog;
    // Called with true when a recording starts and false when it ends: while it lasts the global
    // hot keys must let go of the keyboard, or a combination they hold would fire instead of
    // being recorded.
    std::function<void(bool recording)> recordingChanged;
    PlatformWords words = PlatformWords::current();
};

// The preferences window's behaviour over the PreferencesView port:
// every control saves through the PreferencesController on change, and the form is shown again
// from the file after each change. A hot key row records the next key press in the window
// (Escape cancels), its clear button removes the hot key. Recording ends with that press, a
// clear, closing the window or the window losing the keyboard.
class PreferencesWindowController final : public ShellWindow, private PreferencesFormEvents {
public:
    explicit PreferencesWindowController(PreferencesWindowServices services);
    ~PreferencesWindowController() override;
    PreferencesWindowController(const PreferencesWindowController&) = delete;
    PreferencesWindowController& operator=(const PreferencesWindowController&) = delete;

    // Made on first use; shown with the file's values.
    void show() override;
    bool isVisible() const override;

    std::optional<HotkeySlotId> recordingSlot() const { return recording_; }
    // The form as the file says now.
    PreferencesForm form() const;

    // "12 pt": the value truncated toward zero.
    static QString marginText(double points);
    // "Open Zone Editor" and the other rows' titles.
    static QString hotkeyTitle(HotkeySlotId slot);
    static QString recordingPrompt();
    static QString hideMenuBarIconInfo();

private:
    void cellMarginChanged(double points) override;
    void recordHotkeyClicked(HotkeySlotId slot) override;
    void clearHotkeyClicked(HotkeySlotId slot) override;
    void snapModifiersChanged(SnapCombination row, std::uint32_t mask) override;
    void launchAtLoginChanged(bool on) override;
    void hideMenuBarIconChanged(bool on) override;
    void restoreWindowSizeOnUnsnapChanged(bool on) override;
    void closeClicked() override;
    void windowDeactivated() override;

    void recorded(std::optional<HotkeyDefinition> hotkey);
    // Ends a recording without a result; true when one was in progress.
    bool cancelRecording();
    void refresh();
    void log(const QString& line) const;

    PreferencesWindowServices services_;
    KeyNameProvider keyNames_;
    HotkeyFormatter formatter_;
    HotkeyRecorder recorder_;
    std::optional<HotkeySlotId> recording_;
    // Last, so that it goes first: the view reports to this controller until it is gone.
    std::unique_ptr<PreferencesView> view_;
};

} // namespace paneforge
