#include "app/preferences/preferences_window_controller.h"

#include <cmath>

namespace paneforge {

PreferencesWindowController::PreferencesWindowController(PreferencesWindowServices services)
    : services_(std::move(services))
    , keyNames_(services_.keyboardLayout, services_.keyTranslator, services_.words)
    , formatter_(keyNames_, services_.words)
    , recorder_(services_.views.keyDownMonitor()) {}

PreferencesWindowController::~PreferencesWindowController() {
    // The view first: it must not report to a controller that is half gone.
    view_.reset();
}

QString PreferencesWindowController::marginText(double points) {
    double whole = std::trunc(points);
    if (whole == 0 || !std::isfinite(whole)) {
        whole = 0; // no "-0"
    }
    return QString::number(whole, 'f', 0) + QStringLiteral(" pt");
}

QString PreferencesWindowController::hotkeyTitle(HotkeySlotId slot) {
    switch (slot) {
    case HotkeySlotId::OpenEditor:
        return QStringLiteral("Open Zone Editor");
    case HotkeySlotId::OpenPreferences:
        return QStringLiteral("Open Preferences");
    case HotkeySlotId::OpenLayoutSelector:
        return QStringLiteral("Open Layout Selector");
    case HotkeySlotId::MoveToNextDisplay:
        return QStringLiteral("Move to Next Display");
    case HotkeySlotId::NextLayout:
        return QStringLiteral("Next Layout");
    case HotkeySlotId::PreviousLayout:
        return QStringLiteral("Previous Layout");
    }
    return {};
}

QString PreferencesWindowController::recordingPrompt() {
    return QStringLiteral("Type the combination (Escape cancels)");
}

QString PreferencesWindowController::hideMenuBarIconInfo() {
    return QStringLiteral("Set an 'Open Preferences' hotkey first to ensure you can reopen "
                          "Preferences after hiding the icon.");
}

PreferencesForm PreferencesWindowController::form() const {
    PreferencesController& preferences = services_.preferences;
    const PaneforgeConfig config = preferences.load();
    PreferencesForm form;
    form.cellMarginPoints = config.cellMarginPoints();
    form.cellMarginText = marginText(form.cellMarginPoints);
    for (const HotkeySlot& slot : hotkeySlots()) {
        const bool recording = recording_ == slot.slot;
        form.hotkeys.push_back(
            {slot.slot, hotkeyTitle(slot.slot),
             recording ? recordingPrompt() : formatter_.format(slot.read(config)), recording});
    }
    const auto& order = PlatformWords::settingsOrder();
    for (std::size_t i = 0; i < order.size(); ++i) {
        form.modifierBoxes[i] = {order[i], services_.words.modifierName(order[i])};
    }
    form.singleSnapModifiers = preferences.getSingleSnapModifiers().modifiers;
    form.multiSnapModifiers = preferences.getMultiSnapModifiers().modifiers;

    form.launchAtLogin = preferences.getLaunchAtLogin();
    form.launchAtLoginEnabled = services_.loginItems.appliesToThisCopy();
    if (!form.launchAtLoginEnabled) {
        form.launchAtLoginInfo = services_.words.launchAtLoginRequirement();
    }

    form.hideMenuBarIconTitle = QStringLiteral("Hide ") + services_.words.statusIconName();
    form.hideMenuBarIcon = preferences.getHideMenuBarIcon();
    // Hiding the icon needs a way back; a hidden icon can always be shown again.
    form.hideMenuBarIconEnabled =
        config.openPreferencesHotkey().has_value() || form.hideMenuBarIcon;
    if (!form.hideMenuBarIconEnabled) {
        form.hideMenuBarIconInfo = hideMenuBarIconInfo();
    }
    form.restoreWindowSizeOnUnsnap = preferences.getRestoreWindowSizeOnUnsnap();
    return form;
}

void PreferencesWindowController::show() {
    if (!view_) {
        view_ = services_.views.makePreferencesView(*this);
    }
    view_->display(form());
    view_->present();
}

bool PreferencesWindowController::isVisible() const {
    return view_ && view_->isVisible();
}

void PreferencesWindowController::refresh() {
    if (view_) {
        view_->display(form());
    }
}

void PreferencesWindowController::log(const QString& line) const {
    if (services_.fileLog) {
        services_.fileLog(line);
    }
}

void PreferencesWindowController::cellMarginChanged(double points) {
    services_.preferences.setCellMarginPoints(points);
    refresh();
}

void PreferencesWindowController::recordHotkeyClicked(HotkeySlotId slot) {
    const bool wasRecording = recording_.has_value();
    recording_ = slot;
    if (!wasRecording && services_.recordingChanged) {
        services_.recordingChanged(true);
    }
    // Replaces a recording for another row.
    recorder_.start([this](std::optional<HotkeyDefinition> hotkey) { recorded(hotkey); });
    log(QStringLiteral("PreferencesWindowController.record slot=%1").arg(quint32(slot)));
    refresh();
}

void PreferencesWindowController::recorded(std::optional<HotkeyDefinition> hotkey) {
    if (!recording_) {
        return;
    }
    const HotkeySlotId slot = *recording_;
    recording_.reset();
    if (hotkey) {
        log(QStringLiteral("PreferencesWindowController.recorded slot=%1 keyCode=%2 modifiers=%3")
                .arg(quint32(slot))
                .arg(hotkey->keyCode)
                .arg(hotkey->modifiers));
        services_.preferences.setHotkey(slot, hotkey);
    } else {
        log(QStringLiteral("PreferencesWindowController.recording cancelled slot=%1")
                .arg(quint32(slot)));
    }
    // After the setter: the hot keys come back with the new combination in the file.
    if (services_.recordingChanged) {
        services_.recordingChanged(false);
    }
    refresh();
}

bool PreferencesWindowController::cancelRecording() {
    recorder_.stop();
    if (!recording_) {
        return false;
    }
    log(QStringLiteral("PreferencesWindowController.recording cancelled slot=%1")
            .arg(quint32(*recording_)));
    recording_.reset();
    return true;
}

void PreferencesWindowController::clearHotkeyClicked(HotkeySlotId slot) {
    const bool wasRecording = cancelRecording();
    services_.preferences.setHotkey(slot, std::nullopt);
    if (wasRecording && services_.recordingChanged) {
        services_.recordingChanged(false);
    }
    refresh();
}

void PreferencesWindowController::snapModifiersChanged(SnapCombination row, std::uint32_t mask) {
    if (row == SnapCombination::Single) {
        services_.preferences.setSingleSnapModifiers(ModifierDefinition{mask});
    } else {
        services_.preferences.setMultiSnapModifiers(ModifierDefinition{mask});
    }
    refresh();
}

void PreferencesWindowController::launchAtLoginChanged(bool on) {
    // A disabled box changes nothing, however the change arrived.
    if (services_.loginItems.appliesToThisCopy()) {
        services_.preferences.setLaunchAtLogin(on);
    }
    refresh();
}

void PreferencesWindowController::hideMenuBarIconChanged(bool on) {
    if (!on || form().hideMenuBarIconEnabled) {
        services_.preferences.setHideMenuBarIcon(on);
    }
    refresh();
}

void PreferencesWindowController::restoreWindowSizeOnUnsnapChanged(bool on) {
    services_.preferences.setRestoreWindowSizeOnUnsnap(on);
    refresh();
}

void PreferencesWindowController::closeClicked() {
    windowDeactivated();
    if (view_) {
        view_->close();
    }
}

void PreferencesWindowController::windowDeactivated() {
    if (cancelRecording()) {
        if (services_.recordingChanged) {
            services_.recordingChanged(false);
        }
        refresh();
    }
}

} // namespace paneforge
