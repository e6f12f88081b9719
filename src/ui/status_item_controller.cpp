#include "ui/status_item_controller.h"

#include "ui/menu_bar_icon_renderer.h"

#include <QApplication>
#include <QPalette>

namespace paneforge {

StatusItemController::StatusItemController(Logger logger, QObject* parent)
    : QObject(parent)
    , logger_(std::move(logger)) {
    configureMenu();
}

StatusItemController::~StatusItemController() = default;

QIcon StatusItemController::makeIcon() {
    QIcon icon;
#ifdef Q_OS_MACOS
    // A template image: the menu bar tints it for light and dark appearances.
    for (const qreal ratio : {1.0, 2.0}) {
        icon.addPixmap(QPixmap::fromImage(MenuBarIconRenderer::makeTemplateImage({18, 18}, ratio)));
    }
    icon.setIsMask(true);
#else
    // Tray hosts show the image as it is: draw it in the desktop's text colour.
    const QColor color = QApplication::palette().color(QPalette::WindowText);
    for (const int side : {16, 22, 24, 32, 48}) {
        icon.addPixmap(QPixmap::fromImage(MenuBarIconRenderer::makeImage({side, side}, color)));
    }
#endif
    return icon;
}

void StatusItemController::configureMenu() {
    QAction* quit = menu_.addAction(QStringLiteral("Quit Paneforge"));
    connect(quit, &QAction::triggered, this, [this] {
        if (onQuit_) {
            onQuit_();
        }
    });
}

bool StatusItemController::configureStatusItem() {
    statusItem_.setIcon(makeIcon());
    statusItem_.setToolTip(QStringLiteral("Paneforge"));
    statusItem_.setContextMenu(&menu_);
    statusItem_.show();
    const bool available = QSystemTrayIcon::isSystemTrayAvailable();
    if (available) {
        logger_.info(QStringLiteral("icon shown"));
    } else {
        logger_.notice(
            QStringLiteral("no system tray is running, so the icon could not be shown; snapping "
                           "works without it, and the icon appears when a tray starts"));
    }
    return available;
}

} // namespace paneforge
