#pragma once

#include "app/runtime/notification_center.h"
#include "app/runtime/scheduler.h"
#include "app/runtime/weak_guard.h"

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QString>
#include <optional>

namespace paneforge {

// Posts "PaneforgeConfigChanged" when the configuration file changes on disk behind the agent's
// back: a hand edit, `paneforge backup restore`, another tool. Saves replace the file by
// renaming a new one over it, so the folder is watched as well as the file, and the file is
// watched again whenever it reappears. A burst of change events is looked at once, a moment
// later, and only bytes that differ from the last ones seen count, so one save makes one
// notification; the agent's own saves, which post the notification themselves, make none.
class ConfigFileWatcher {
public:
    static constexpr double settleDelay = 0.1; // seconds

    ConfigFileWatcher(QString filePath, Scheduler& scheduler, NotificationCenter& notifications);

private:
    void watch();
    void changeSeen();
    void look();
    std::optional<QByteArray> currentBytes() const;

    QString filePath_;
    Scheduler& scheduler_;
    NotificationCenter& notifications_;
    QFileSystemWatcher watcher_;
    std::optional<QByteArray> known_;
    ScheduledWorkHandle pendingLook_;
    NotificationCenter::ObservationToken configChanged_;
    WeakGuard<ConfigFileWatcher> guard_{this};
};

} // namespace paneforge
