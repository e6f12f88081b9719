#include "core/config/paneforge_config.h"

#include "core/config/json_decoding.h"
#include "core/config/name_table.h"

#include <array>

namespace paneforge {

namespace {

using Keys = PaneforgeConfigCodingKeys;

constexpr auto kKeyNames = nameTable<Keys>({
    {Keys::Displays, "displays"},
    {Keys::DefaultLayout, "defaultLayout"},
    {Keys::CellMarginPoints, "cellMarginPoints"},
    {Keys::OpenEditorHotkey, "openEditorHotkey"},
    {Keys::OpenPreferencesHotkey, "openPreferencesHotkey"},
    {Keys::OpenLayoutSelectorHotkey, "openLayoutSelectorHotkey"},
    {Keys::MoveToNextDisplayHotkey, "moveToNextDisplayHotkey"},
    {Keys::NextLayoutHotkey, "nextLayoutHotkey"},
    {Keys::PreviousLayoutHotkey, "previousLayoutHotkey"},
    {Keys::SingleSnapModifiers, "singleSnapModifiers"},
    {Keys::MultiSnapModifiers, "multiSnapModifiers"},
    {Keys::LaunchAtLogin, "launchAtLogin"},
    {Keys::HideMenuBarIcon, "hideMenuBarIcon"},
    {Keys::RestoreWindowSizeOnUnsnap, "restoreWindowSizeOnUnsnap"},
    {Keys::HasCompletedQuickStart, "hasCompletedQuickStart"},
});

PaneforgeConfig makeDefaultConfig(const GridDefinition& layout, ModifierDefinition single,
                                  ModifierDefinition multi) {
    ConfigSnapshot s;
    s.defaultLayout = layout;
    s.cellMarginPoints = 8.0;
    s.singleSnapModifiers = single;
    s.multiSnapModifiers = multi;
    s.launchAtLogin = false;
    s.hideMenuBarIcon = false;
    s.restoreWindowSizeOnUnsnap = true;
    s.hasCompletedQuickStart = false;
    return PaneforgeConfig(std::move(s));
}

template <typename T>
void insertIfPresent(QJsonObject& object, Keys key, const std::optional<T>& value) {
    if (value) {
        if constexpr (std::is_same_v<T, bool>) {
            object.insert(rawValue(key), *value);
        } else {
            object.insert(rawValue(key), value->toJson());
        }
    }
}

template <typename T> std::optional<T> decodeOptional(const JsonObjectReader& reader, Keys key) {
    const QString name = rawValue(key);
    const auto value = reader.optionalValue(name);
    if (!value) {
        return std::nullopt;
    }
    if constexpr (std::is_same_v<T, bool>) {
        return json::toBool(*value, reader.pathOf(name));
    } else {
        return T::fromJson(*value, reader.pathOf(name));
    }
}

bool sameDisplays(const DisplayLayoutsMap& a, const DisplayLayoutsMap& b) {
    return a == b;
}

} // namespace

QString rawValue(PaneforgeConfigCodingKeys key) {
    return kKeyNames.nameOf(key);
}

std::optional<PaneforgeConfigCodingKeys> paneforgeConfigCodingKeyFromRawValue(const QString& raw) {
    return kKeyNames.valueOf(raw);
}

PaneforgeConfig PaneforgeConfig::makeDefault() {
    const GridDefinition layout(QStringLiteral("default"), QStringLiteral("Default"), {0.5}, {});
    return makeDefaultConfig(layout, ModifierDefinition{modifier_bits::kCommand},
                             ModifierDefinition{modifier_bits::kCommand | modifier_bits::kShift});
}

PaneforgeConfig PaneforgeConfig::copying(std::optional<DisplayLayoutsMap> displays,
                                         std::optional<GridDefinition> defaultLayout,
                                         std::optional<double> cellMarginPoints) const {
    return with([&](ConfigSnapshot& s) {
        if (displays) {
            s.displays = std::move(*displays);
        }
        if (defaultLayout) {
            s.defaultLayout = std::move(*defaultLayout);
        }
        if (cellMarginPoints) {
            s.cellMarginPoints = *cellMarginPoints;
        }
    });
}

PaneforgeConfig PaneforgeConfig::withCellMarginPoints(double points) const {
    return with([&](ConfigSnapshot& s) { s.cellMarginPoints = points; });
}
PaneforgeConfig PaneforgeConfig::withOpenEditorHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.openEditorHotkey = h; });
}
PaneforgeConfig
PaneforgeConfig::withOpenPreferencesHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.openPreferencesHotkey = h; });
}
PaneforgeConfig
PaneforgeConfig::withOpenLayoutSelectorHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.openLayoutSelectorHotkey = h; });
}
PaneforgeConfig
PaneforgeConfig::withMoveToNextDisplayHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.moveToNextDisplayHotkey = h; });
}
PaneforgeConfig PaneforgeConfig::withNextLayoutHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.nextLayoutHotkey = h; });
}
PaneforgeConfig PaneforgeConfig::withPreviousLayoutHotkey(std::optional<HotkeyDefinition> h) const {
    return with([&](ConfigSnapshot& s) { s.previousLayoutHotkey = h; });
}
PaneforgeConfig PaneforgeConfig::withSingleSnapModifiers(ModifierDefinition m) const {
    return with([&](ConfigSnapshot& s) { s.singleSnapModifiers = m; });
}
PaneforgeConfig PaneforgeConfig::withMultiSnapModifiers(ModifierDefinition m) const {
    return with([&](ConfigSnapshot& s) { s.multiSnapModifiers = m; });
}
PaneforgeConfig PaneforgeConfig::withLaunchAtLogin(bool value) const {
    return with([&](ConfigSnapshot& s) { s.launchAtLogin = value; });
}
PaneforgeConfig PaneforgeConfig::withHideMenuBarIcon(bool value) const {
    return with([&](ConfigSnapshot& s) { s.hideMenuBarIcon = value; });
}
PaneforgeConfig PaneforgeConfig::withRestoreWindowSizeOnUnsnap(bool value) const {
    return with([&](ConfigSnapshot& s) { s.restoreWindowSizeOnUnsnap = value; });
}
PaneforgeConfig PaneforgeConfig::withHasCompletedQuickStart(bool value) const {
    return with([&](ConfigSnapshot& s) { s.hasCompletedQuickStart = value; });
}

bool operator==(const PaneforgeConfig& a, const PaneforgeConfig& b) {
    const ConfigSnapshot& x = a.s_;
    const ConfigSnapshot& y = b.s_;
    return sameDisplays(x.displays, y.displays) &&
           x.defaultLayout.hasSameContent(y.defaultLayout) &&
           x.cellMarginPoints == y.cellMarginPoints && x.openEditorHotkey == y.openEditorHotkey &&
           x.openPreferencesHotkey == y.openPreferencesHotkey &&
           x.openLayoutSelectorHotkey == y.openLayoutSelectorHotkey &&
           x.moveToNextDisplayHotkey == y.moveToNextDisplayHotkey &&
           x.nextLayoutHotkey == y.nextLayoutHotkey &&
           x.previousLayoutHotkey == y.previousLayoutHotkey &&
           x.singleSnapModifiers == y.singleSnapModifiers &&
           x.multiSnapModifiers == y.multiSnapModifiers && x.launchAtLogin == y.launchAtLogin &&
           x.hideMenuBarIcon == y.hideMenuBarIcon &&
           x.restoreWindowSizeOnUnsnap == y.restoreWindowSizeOnUnsnap &&
           x.hasCompletedQuickStart == y.hasCompletedQuickStart;
}

QJsonObject PaneforgeConfig::toJson() const {
    QJsonObject displays;
    for (const auto& [key, entry] : s_.displays) {
        displays.insert(key, entry.toJson());
    }
    QJsonObject object{{rawValue(Keys::Displays), displays},
                       {rawValue(Keys::DefaultLayout), s_.defaultLayout.toJson()},
                       {rawValue(Keys::CellMarginPoints), s_.cellMarginPoints}};
    insertIfPresent(object, Keys::OpenEditorHotkey, s_.openEditorHotkey);
    insertIfPresent(object, Keys::OpenPreferencesHotkey, s_.openPreferencesHotkey);
    insertIfPresent(object, Keys::OpenLayoutSelectorHotkey, s_.openLayoutSelectorHotkey);
    insertIfPresent(object, Keys::MoveToNextDisplayHotkey, s_.moveToNextDisplayHotkey);
    insertIfPresent(object, Keys::NextLayoutHotkey, s_.nextLayoutHotkey);
    insertIfPresent(object, Keys::PreviousLayoutHotkey, s_.previousLayoutHotkey);
    insertIfPresent(object, Keys::SingleSnapModifiers, s_.singleSnapModifiers);
    insertIfPresent(object, Keys::MultiSnapModifiers, s_.multiSnapModifiers);
    insertIfPresent(object, Keys::LaunchAtLogin, s_.launchAtLogin);
    insertIfPresent(object, Keys::HideMenuBarIcon, s_.hideMenuBarIcon);
    insertIfPresent(object, Keys::RestoreWindowSizeOnUnsnap, s_.restoreWindowSizeOnUnsnap);
    insertIfPresent(object, Keys::HasCompletedQuickStart, s_.hasCompletedQuickStart);
    return object;
}

PaneforgeConfig PaneforgeConfig::fromJson(const QJsonValue& value, const QString& path) {
    const JsonObjectReader reader(value, path);
    ConfigSnapshot s;
    const JsonObjectReader displays = reader.requireReader(rawValue(Keys::Displays));
    for (auto it = displays.object().begin(); it != displays.object().end(); ++it) {
        s.displays.insert_or_assign(
            it.key(), DisplayLayouts::fromJson(it.value(), displays.pathOf(it.key())));
    }
    s.defaultLayout = GridDefinition::fromJson(reader.requireValue(rawValue(Keys::DefaultLayout)),
                                               reader.pathOf(rawValue(Keys::DefaultLayout)));
    s.cellMarginPoints = reader.requireDouble(rawValue(Keys::CellMarginPoints));
    s.openEditorHotkey = decodeOptional<HotkeyDefinition>(reader, Keys::OpenEditorHotkey);
    s.openPreferencesHotkey = decodeOptional<HotkeyDefinition>(reader, Keys::OpenPreferencesHotkey);
    s.openLayoutSelectorHotkey =
        decodeOptional<HotkeyDefinition>(reader, Keys::OpenLayoutSelectorHotkey);
    s.moveToNextDisplayHotkey =
        decodeOptional<HotkeyDefinition>(reader, Keys::MoveToNextDisplayHotkey);
    s.nextLayoutHotkey = decodeOptional<HotkeyDefinition>(reader, Keys::NextLayoutHotkey);
    s.previousLayoutHotkey = decodeOptional<HotkeyDefinition>(reader, Keys::PreviousLayoutHotkey);
    s.singleSnapModifiers = decodeOptional<ModifierDefinition>(reader, Keys::SingleSnapModifiers);
    s.multiSnapModifiers = decodeOptional<ModifierDefinition>(reader, Keys::MultiSnapModifiers);
    s.launchAtLogin = decodeOptional<bool>(reader, Keys::LaunchAtLogin);
    s.hideMenuBarIcon = decodeOptional<bool>(reader, Keys::HideMenuBarIcon);
    s.restoreWindowSizeOnUnsnap = decodeOptional<bool>(reader, Keys::RestoreWindowSizeOnUnsnap);
    s.hasCompletedQuickStart = decodeOptional<bool>(reader, Keys::HasCompletedQuickStart);
    return PaneforgeConfig(std::move(s));
}

} // namespace paneforge
