#include "ui/status_item_controller.h"

#include "core/policies/status_menu_order.h"
#include "core/policies/update_policy.h"
#include "ui/menu_bar_icon_renderer.h"

#include <QApplication>
#include <QCursor>
#include <QPalette>

namespace paneforge {

StatusItemController::StatusItemController(Logger logger, StatusMenuActions actions,
                                           QObject* parent)
    : QObject(parent)
    , logger_(std::move(logger))
    , actions_(std::move(actions)) {
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
    using Action = std::function<void()> StatusMenuActions::*;
    const QStringList actions = paneforgeActionTitles();
    const QStringList settings = paneforgeSettingTitles();
    const QStringList help = paneforgeHelpTitles();
    const QString zoneEditorTitle = actions.value(4);
    const QList<std::pair<QString, Action>> rowActions{
        {actions.value(0), &StatusMenuActions::openLayoutSelector},
        {actions.value(1), &StatusMenuActions::nextLayout},
        {actions.value(2), &StatusMenuActions::previousLayout},
        {actions.value(3), &StatusMenuActions::moveToNextDisplay},
        {settings.value(0), &StatusMenuActions::openPreferences},
        {settings.value(1), &StatusMenuActions::backupSettings},
        {settings.value(2), &StatusMenuActions::restoreSettings},
        {help.value(0), &StatusMenuActions::openQuickStart},
        {help.value(1), &StatusMenuActions::revealLogFile},
        {UpdateMenuCopy::checkForUpdates, &StatusMenuActions::checkForUpdates},
        {QStringLiteral("About Paneforge"), &StatusMenuActions::openAbout},
    };
    for (const StatusMenuRow& row : paneforgeStatusMenuRows()) {
        if (row.isSeparator()) {
            menu_.addSeparator();
            continue;
        }
        if (row.title == zoneEditorTitle) {
            zoneEditorMenu_.setTitle(row.title);
            menu_.addMenu(&zoneEditorMenu_);
            continue;
        }
        // A title no row action claims is the last one: quitting.
        Action member = &StatusMenuActions::quit;
        for (const auto& [title, action] : rowActions) {
            if (title == row.title) {
                member = action;
            }
        }
        QAction* item = menu_.addAction(row.title);
        connect(item, &QAction::triggered, this, [this, member] {
            if (const auto& action = actions_.*member) {
                action();
            }
        });
    }
    makeZoneEditorSubmenu();
    connect(&menu_, &QMenu::aboutToShow, this, &StatusItemController::makeZoneEditorSubmenu);
}

void StatusItemController::makeZoneEditorSubmenu() {
    zoneEditorMenu_.clear();
    const auto displays =
        actions_.displays ? actions_.displays() : std::vector<StatusMenuDisplay>{};
    if (displays.empty()) {
        zoneEditorMenu_.addAction(QStringLiteral("No Displays"))->setEnabled(false);
        return;
    }
    for (const StatusMenuDisplay& display : displays) {
        QAction* item = zoneEditorMenu_.addAction(display.title);
        item->setData(QVariant::fromValue<quint32>(display.displayId));
        connect(item, &QAction::triggered, this, [this, item] {
            if (actions_.openZoneEditorForDisplay) {
                actions_.openZoneEditorForDisplay(item->data().value<quint32>());
            }
        });
    }
}

bool StatusItemController::configureStatusItem() {
    statusItem_.setIcon(makeIcon());
    statusItem_.setToolTip(QStringLiteral("Paneforge"));
    statusItem_.setContextMenu(&menu_);
#ifndef Q_OS_MACOS
    // The menu bar opens the menu on a click; most tray hosts only on a right click. A left click
    // opens it too, also when it follows the last one closely enough to count as a double click.
    connect(&statusItem_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                    menu_.popup(QCursor::pos());
                }
            });
#endif
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
