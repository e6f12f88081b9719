#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/view_factory.h"
#include "ui/qt_key_down_monitor.h"
#include "ui/snap_overlay_window.h"

namespace paneforge {

// The agent's windows, in Qt Widgets, with the platform's native touches.
class QtViewFactory final : public ViewFactory {
public:
    explicit QtViewFactory(NativeWindows& nativeWindows);

    SnapOverlayFactory& snapOverlays() override { return snapOverlays_; }
    std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) override;
    KeyDownMonitorApi& keyDownMonitor() override { return keyDownMonitor_; }
    std::optional<QString> keyWindowTitle() override;

private:
    QtSnapOverlayFactory snapOverlays_;
    QtKeyDownMonitor keyDownMonitor_;
};

} // namespace paneforge
