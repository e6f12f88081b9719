#include "app/input/hotkey_slots.h"

namespace paneforge {

const std::array<HotkeySlot, 6>& hotkeySlots() {
    using C = PaneforgeConfig;
    static const std::array<HotkeySlot, 6> slots{{
        {HotkeySlotId::OpenEditor, &C::openEditorHotkey, &C::withOpenEditorHotkey,
         Notification::HotkeyChanged, QLatin1StringView("OpenEditor")},
        {HotkeySlotId::OpenPreferences, &C::openPreferencesHotkey, &C::withOpenPreferencesHotkey,
         Notification::PreferencesHotkeyChanged, QLatin1StringView("OpenPreferences")},
        {HotkeySlotId::OpenLayoutSelector,
         &C::openLayoutSelectorHotkey,
         &C::withOpenLayoutSelectorHotkey,
         Notification::LayoutSelectorHotkeyChanged,
         {}},
        {HotkeySlotId::MoveToNextDisplay,
         &C::moveToNextDisplayHotkey,
         &C::withMoveToNextDisplayHotkey,
         Notification::MoveWindowHotkeyChanged,
         {}},
        {HotkeySlotId::NextLayout,
         &C::nextLayoutHotkey,
         &C::withNextLayoutHotkey,
         Notification::NextLayoutHotkeyChanged,
         {}},
        {HotkeySlotId::PreviousLayout,
         &C::previousLayoutHotkey,
         &C::withPreviousLayoutHotkey,
         Notification::PreviousLayoutHotkeyChanged,
         {}},
    }};
    return slots;
}

const HotkeySlot& hotkeySlot(HotkeySlotId slot) {
    return hotkeySlots()[static_cast<std::size_t>(slot) - 1];
}

} // namespace paneforge
