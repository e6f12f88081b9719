#include "app/preferences/preferences_controller.h"

namespace paneforge {

namespace {

// A setting from `config`, or the default configuration's when the file leaves it out.
template <typename Field> auto orDefault(const PaneforgeConfig& config, Field field) {
    if (const auto value = field(config)) {
        return *value;
    }
    return *field(PaneforgeConfig::makeDefault());
}

} // namespace

PreferencesController::PreferencesController(ConfigStore& store, NotificationCenter& notifications)
    : store_(store)
    , notifications_(notifications) {}

PaneforgeConfig PreferencesController::load() const {
    try {
        return store_.loadConfig();
    } catch (const std::exception&) {
        // The store has logged why.
        return PaneforgeConfig::makeDefault();
    }
}

template <typename Change>
void PreferencesController::change(Change change, std::optional<Notification> first) {
    try {
        store_.saveConfig(change(load()));
    } catch (const std::exception&) {
        // Dropped: nothing is shown, and the notifications go out all the same.
    }
    if (first) {
        notifications_.post(*first);
    }
    notifications_.post(Notification::ConfigChanged);
}

void PreferencesController::setCellMarginPoints(double points) {
    change([points](const PaneforgeConfig& c) { return c.withCellMarginPoints(points); },
           std::nullopt);
}

void PreferencesController::setHotkey(HotkeySlotId slot, std::optional<HotkeyDefinition> hotkey) {
    const HotkeySlot& row = hotkeySlot(slot);
    change([&row, hotkey](const PaneforgeConfig& c) { return row.write(c, hotkey); }, row.changed);
}

void PreferencesController::setSingleSnapModifiers(ModifierDefinition modifiers) {
    change([modifiers](const PaneforgeConfig& c) { return c.withSingleSnapModifiers(modifiers); },
           std::nullopt);
}

void PreferencesController::setMultiSnapModifiers(ModifierDefinition modifiers) {
    change([modifiers](const PaneforgeConfig& c) { return c.withMultiSnapModifiers(modifiers); },
           std::nullopt);
}

void PreferencesController::setLaunchAtLogin(bool on) {
    change([on](const PaneforgeConfig& c) { return c.withLaunchAtLogin(on); }, std::nullopt);
}

void PreferencesController::setHideMenuBarIcon(bool on) {
    change([on](const PaneforgeConfig& c) { return c.withHideMenuBarIcon(on); }, std::nullopt);
}

void PreferencesController::setRestoreWindowSizeOnUnsnap(bool on) {
    change([on](const PaneforgeConfig& c) { return c.withRestoreWindowSizeOnUnsnap(on); },
           std::nullopt);
}

void PreferencesController::setHasCompletedQuickStart(bool on) {
    change([on](const PaneforgeConfig& c) { return c.withHasCompletedQuickStart(on); },
           std::nullopt);
}

double PreferencesController::getCellMarginPoints() const {
    return load().cellMarginPoints();
}

std::optional<HotkeyDefinition> PreferencesController::getHotkey(HotkeySlotId slot) const {
    // No hot key has a default: absent stays absent.
    return hotkeySlot(slot).read(load());
}

ModifierDefinition PreferencesController::getSingleSnapModifiers() const {
    return orDefault(load(), [](const PaneforgeConfig& c) { return c.singleSnapModifiers(); });
}

ModifierDefinition PreferencesController::getMultiSnapModifiers() const {
    return orDefault(load(), [](const PaneforgeConfig& c) { return c.multiSnapModifiers(); });
}

bool PreferencesController::getLaunchAtLogin() const {
    return orDefault(load(), [](const PaneforgeConfig& c) { return c.launchAtLogin(); });
}

bool PreferencesController::getHideMenuBarIcon() const {
    return orDefault(load(), [](const PaneforgeConfig& c) { return c.hideMenuBarIcon(); });
}

bool PreferencesController::getRestoreWindowSizeOnUnsnap() const {
    return orDefault(load(),
                     [](const PaneforgeConfig& c) { return c.restoreWindowSizeOnUnsnap(); });
}

} // namespace paneforge
