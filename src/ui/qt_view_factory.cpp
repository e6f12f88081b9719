#include "ui/qt_view_factory.h"

#include "ui/about_window.h"
#include "ui/onboarding/permission_coach_window.h"
#include "ui/onboarding/quick_start_window.h"
#include "ui/preferences_window.h"
#include "ui/status_item_controller.h"

#include <QApplication>
#include <QScreen>

namespace paneforge {

namespace {

QRectF primaryScreenGeometry() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? QRectF(primary->geometry()) : QRectF();
}

SnapOverlayEnvironment overlayEnvironment(NativeWindows& nativeWindows) {
    SnapOverlayEnvironment environment;
    environment.primaryScreenGeometry = primaryScreenGeometry;
    environment.translucencyAvailable = [&nativeWindows] {
        return nativeWindows.compositingAvailable();
    };
    environment.configureNativeWindow = [&nativeWindows](QWidget& widget) {
        nativeWindows.configureOverlayWindow(static_cast<NativeWindowId>(widget.winId()));
    };
    return environment;
}

} // namespace

QtViewFactory::QtViewFactory(NativeWindows& nativeWindows,
                             std::function<void(const QString&)> fileLog)
    : nativeWindows_(nativeWindows)
    , fileLog_(std::move(fileLog))
    , snapOverlays_(overlayEnvironment(nativeWindows))
    , gridEditors_(GridEditorEnvironment{nativeWindows, primaryScreenGeometry})
    , alerts_(nativeWindows) {}

std::unique_ptr<StatusItemView> QtViewFactory::makeStatusItem(StatusMenuActions actions) {
    return std::make_unique<StatusItemController>(
        LoggerFactory::makeLogger(QStringLiteral("StatusItem")), std::move(actions));
}

std::unique_ptr<ShellWindow> QtViewFactory::makeAboutWindow() {
    return std::make_unique<AboutWindow>(nativeWindows_);
}

std::unique_ptr<PreferencesView> QtViewFactory::makePreferencesView(PreferencesFormEvents& events) {
    return std::make_unique<PreferencesWindow>(events, nativeWindows_);
}

std::optional<QString> QtViewFactory::keyWindowTitle() {
    if (const QWidget* window = QApplication::activeWindow()) {
        return window->windowTitle();
    }
    return std::nullopt;
}

std::unique_ptr<QuickStartView> QtViewFactory::makeQuickStartWindow(QuickStartActions actions) {
    return std::make_unique<QuickStartWindow>(nativeWindows_, std::move(actions));
}

std::unique_ptr<PermissionCoachView>
QtViewFactory::makePermissionCoach(std::function<void()> onButton) {
    return std::make_unique<PermissionCoachWindow>(nativeWindows_, std::move(onButton));
}

} // namespace paneforge
