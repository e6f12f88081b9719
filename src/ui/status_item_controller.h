#pragma once

#include "app/ports/status_item_view.h"
#include "core/diagnostics/logger_factory.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

namespace paneforge {

// The agent's icon in the menu bar or system tray and its menu. For now the menu only quits.
class StatusItemController final : public QObject, public StatusItemView {
    Q_OBJECT
public:
    explicit StatusItemController(Logger logger, QObject* parent = nullptr);
    ~StatusItemController() override;

    void setOnQuit(std::function<void()> onQuit) { onQuit_ = std::move(onQuit); }
    bool show() override { return configureStatusItem(); }

    // Shows the icon. Without a tray host the agent runs on without one (logged); the icon
    // appears by itself if a tray host starts later. Returns whether a tray host is there now.
    bool configureStatusItem();

    QMenu& menu() { return menu_; }
    const QSystemTrayIcon& statusItem() const { return statusItem_; }

    static QIcon makeIcon();

private:
    void configureMenu();

    Logger logger_;
    QMenu menu_;
    QSystemTrayIcon statusItem_;
    std::function<void()> onQuit_;
};

} // namespace paneforge
