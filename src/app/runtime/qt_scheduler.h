#pragma once

#include "app/runtime/scheduler.h"

#include <QObject>

namespace paneforge {

// The agent's scheduler: QTimer on the thread that owns it.
class QtScheduler final : public Scheduler {
public:
    explicit QtScheduler(QObject* context = nullptr);

    void post(Task task) override;
    ScheduledWorkHandle postAfter(double seconds, Task task) override;
    ScheduledWorkHandle repeatEvery(double seconds, Task task) override;

private:
    QObject* context_;
};

} // namespace paneforge
