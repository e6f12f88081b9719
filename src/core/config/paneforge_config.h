#pragma once

#include "core/input/hotkey_definition.h"
#include "core/input/modifier_definition.h"
#include "core/layouts/display_layouts.h"
#include "core/layouts/grid_definition.h"

#include <QJsonObject>
#include <QString>
#include <map>
#include <optional>

namespace paneforge {

// The fifteen keys of the configuration, in their declaration order.
enum class PaneforgeConfigCodingKeys {
    Displays,
    DefaultLayout,
    CellMarginPoints,
    OpenEditorHotkey,
    OpenPreferencesHotkey,
    OpenLayoutSelectorHotkey,
    MoveToNextDisplayHotkey,
    NextLayoutHotkey,
    PreviousLayoutHotkey,
    SingleSnapModifiers,
    MultiSnapModifiers,
    LaunchAtLogin,
    HideMenuBarIcon,
    RestoreWindowSizeOnUnsnap,
    HasCompletedQuickStart,
};
QString rawValue(PaneforgeConfigCodingKeys key);
std::optional<PaneforgeConfigCodingKeys> paneforgeConfigCodingKeyFromRawValue(const QString& raw);

using DisplayLayoutsMap = std::map<QString, DisplayLayouts>;

// A plain copy of every field: the unit of encoding, decoding and copying.
struct ConfigSnapshot {
    DisplayLayoutsMap displays;
    GridDefinition defaultLayout{QString(), QString(), {}, {}};
    double cellMarginPoints = 0.0;
    std::optional<HotkeyDefinition> openEditorHotkey;
    std::optional<HotkeyDefinition> openPreferencesHotkey;
    std::optional<HotkeyDefinition> openLayoutSelectorHotkey;
    std::optional<HotkeyDefinition> moveToNextDisplayHotkey;
    std::optional<HotkeyDefinition> nextLayoutHotkey;
    std::optional<HotkeyDefinition> previousLayoutHotkey;
    std::optional<ModifierDefinition> singleSnapModifiers;
    std::optional<ModifierDefinition> multiSnapModifiers;
    std::optional<bool> launchAtLogin;
    std::optional<bool> hideMenuBarIcon;
    std::optional<bool> restoreWindowSizeOnUnsnap;
    std::optional<bool> hasCompletedQuickStart;
};

// The whole user configuration. Immutable: every change builds a new value. An optional field
// without a value is a state of its own ("never chosen") and survives load and save; only
// makeDefault() fills in defaults.
class PaneforgeConfig {
public:
    explicit PaneforgeConfig(ConfigSnapshot snapshot)
        : s_(std::move(snapshot)) {}

    static PaneforgeConfig makeDefault();

    const DisplayLayoutsMap& displays() const { return s_.displays; }
    const GridDefinition& defaultLayout() const { return s_.defaultLayout; }
    double cellMarginPoints() const { return s_.cellMarginPoints; }
    const std::optional<HotkeyDefinition>& openEditorHotkey() const { return s_.openEditorHotkey; }
    const std::optional<HotkeyDefinition>& openPreferencesHotkey() const {
        return s_.openPreferencesHotkey;
    }
    const std::optional<HotkeyDefinition>& openLayoutSelectorHotkey() const {
        return s_.openLayoutSelectorHotkey;
    }
    const std::optional<HotkeyDefinition>& moveToNextDisplayHotkey() const {
        return s_.moveToNextDisplayHotkey;
    }
    const std::optional<HotkeyDefinition>& nextLayoutHotkey() const { return s_.nextLayoutHotkey; }
    const std::optional<HotkeyDefinition>& previousLayoutHotkey() const {
        return s_.previousLayoutHotkey;
    }
    const std::optional<ModifierDefinition>& singleSnapModifiers() const {
        return s_.singleSnapModifiers;
    }
    const std::optional<ModifierDefinition>& multiSnapModifiers() const {
        return s_.multiSnapModifiers;
    }
    std::optional<bool> launchAtLogin() const { return s_.launchAtLogin; }
    std::optional<bool> hideMenuBarIcon() const { return s_.hideMenuBarIcon; }
    std::optional<bool> restoreWindowSizeOnUnsnap() const { return s_.restoreWindowSizeOnUnsnap; }
    std::optional<bool> hasCompletedQuickStart() const { return s_.hasCompletedQuickStart; }

    const ConfigSnapshot& snapshot() const { return s_; }

    // Each given argument replaces its field; each one left empty keeps the current value.
    PaneforgeConfig copying(std::optional<DisplayLayoutsMap> displays,
                            std::optional<GridDefinition> defaultLayout = std::nullopt,
                            std::optional<double> cellMarginPoints = std::nullopt) const;
    PaneforgeConfig withCellMarginPoints(double points) const;
    PaneforgeConfig withOpenEditorHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withOpenPreferencesHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withOpenLayoutSelectorHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withMoveToNextDisplayHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withNextLayoutHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withPreviousLayoutHotkey(std::optional<HotkeyDefinition> hotkey) const;
    PaneforgeConfig withSingleSnapModifiers(ModifierDefinition modifiers) const;
    PaneforgeConfig withMultiSnapModifiers(ModifierDefinition modifiers) const;
    PaneforgeConfig withLaunchAtLogin(bool value) const;
    PaneforgeConfig withHideMenuBarIcon(bool value) const;
    PaneforgeConfig withRestoreWindowSizeOnUnsnap(bool value) const;
    PaneforgeConfig withHasCompletedQuickStart(bool value) const;

    // Field-by-field equality, layouts compared by their whole content.
    friend bool operator==(const PaneforgeConfig& a, const PaneforgeConfig& b);

    // Required fields always; optional ones only when they have a value (never a JSON null).
    QJsonObject toJson() const;
    // Strict: the three required keys must be there; absent or null optional keys stay absent.
    static PaneforgeConfig fromJson(const QJsonValue& value, const QString& path = {});

private:
    template <typename Change> PaneforgeConfig with(Change change) const {
        ConfigSnapshot snapshot = s_;
        change(snapshot);
        return PaneforgeConfig(std::move(snapshot));
    }

    ConfigSnapshot s_;
};

} // namespace paneforge
