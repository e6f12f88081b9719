#include "ui/qt_view_factory.h"

#include "ui/status_item_controller.h"

#include <QApplication>
#include <QScreen>

namespace paneforge {

namespace {

SnapOverlayEnvironment overlayEnvironment(NativeWindows& nativeWindows) {
    SnapOverlayEnvironment environment;
    environment.primaryScreenGeometry = [] {
        const QScreen* primary = QGuiApplication::primaryScreen();
        return primary ? QRectF(primary->geometry()) : QRectF();
    };
    environment.translucencyAvailable = [&nativeWindows] {
        return nativeWindows.compositingAvailable();
    };
    environment.configureNativeWindow = [&nativeWindows](QWidget& widget) {
        nativeWindows.configureOverlayWindow(static_cast<NativeWindowId>(widget.winId()));
    };
    return environment;
}

} // namespace

QtViewFactory::QtViewFactory(NativeWindows& nativeWindows)
    : snapOverlays_(overlayEnvironment(nativeWindows)) {}

std::unique_ptr<StatusItemView> QtViewFactory::makeStatusItem(StatusMenuActions actions) {
    auto item = std::make_unique<StatusItemController>(
        LoggerFactory::makeLogger(QStringLiteral("StatusItem")));
    item->setOnQuit(std::move(actions.quit));
    return item;
}

std::optional<QString> QtViewFactory::keyWindowTitle() {
    if (const QWidget* window = QApplication::activeWindow()) {
        return window->windowTitle();
    }
    return std::nullopt;
}

} // namespace paneforge
