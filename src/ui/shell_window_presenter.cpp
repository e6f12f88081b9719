#include "ui/shell_window_presenter.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace paneforge {

void presentWindow(QWidget& window, NativeWindows& nativeWindows) {
    if (!window.isVisible()) {
        const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
        if (!screen) {
            screen = QGuiApplication::primaryScreen();
        }
        if (screen) {
            window.adjustSize();
            QRect frame(QPoint(), window.size());
            frame.moveCenter(screen->availableGeometry().center());
            window.move(frame.topLeft());
        }
    }
    window.show();
    window.raise();
    window.activateWindow();
    nativeWindows.activate(static_cast<NativeWindowId>(window.winId()));
}

} // namespace paneforge
