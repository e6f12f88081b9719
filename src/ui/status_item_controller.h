#pragma once

#include "app/ports/status_item_view.h"
#include "core/diagnostics/logger_factory.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

namespace paneforge {

// The agent's icon in the menu bar or system tray and its menu: the rows in their fixed order,
// each calling its action, and the "Zone Editor…" submenu listing the displays of the moment.
class StatusItemController final : public QObject, public StatusItemView {
    Q_OBJECT
public:
    StatusItemController(Logger logger, StatusMenuActions actions, QObject* parent = nullptr);
    ~StatusItemController() override;

    bool show() override { return configureStatusItem(); }

    // Shows the icon. Without a tray host the agent runs on without one (logged); the icon
    // appears by itself if a tray host starts later. Returns whether a tray host is there now.
    bool configureStatusItem();

    QMenu& menu() { return menu_; }
    QMenu& zoneEditorMenu() { return zoneEditorMenu_; }
    const QSystemTrayIcon& statusItem() const { return statusItem_; }

    static QIcon makeIcon();

private:
    void configureMenu();
    // Rebuilt each time the menu opens, so that displays connected or removed since show up.
    void makeZoneEditorSubmenu();

    Logger logger_;
    StatusMenuActions actions_;
    QMenu menu_;
    QMenu zoneEditorMenu_;
    QSystemTrayIcon statusItem_;
};

} // namespace paneforge
