#include "ui/grid_editor_window.h"

#include "ui/snap_overlay_model.h"

#include <QLineEdit>

namespace paneforge {

QtGridEditorWindow::QtGridEditorWindow(GridEditorModel& model,
                                       const GridEditorEnvironment& environment)
    : nativeWindows_(environment.nativeWindows)
    , view_(std::make_unique<GridEditorOverlayView>(
          model, environment.nativeWindows.compositingAvailable())) {
    view_->setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::NoDropShadowWindowHint);
    const QRectF primary =
        environment.primaryScreenGeometry ? environment.primaryScreenGeometry() : QRectF();
    view_->setGeometry(desktopToGlobal(model.visibleFrame(), primary).toAlignedRect());
}

QtGridEditorWindow::~QtGridEditorWindow() = default;

void QtGridEditorWindow::show() {
    view_->show();
    view_->raise();
    view_->activateWindow();
    const auto window = static_cast<NativeWindowId>(view_->winId());
    nativeWindows_.configureEditorWindow(window);
    nativeWindows_.activate(window);
    // Typing names the layout at once; the old name is selected, so it is replaced.
    view_->nameField().setFocus(Qt::ActiveWindowFocusReason);
    view_->nameField().selectAll();
}

void QtGridEditorWindow::close() {
    view_->hide();
}

} // namespace paneforge
