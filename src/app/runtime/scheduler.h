#pragma once

#include <functional>
#include <memory>

namespace paneforge {

// Work scheduled for later. Dropping the handle does not cancel the work; cancel() does, and is
// safe to call at any time, also after the work ran or from inside it.
class ScheduledWork {
public:
    virtual ~ScheduledWork() = default;
    virtual void cancel() = 0;
    virtual bool isActive() const = 0;
};

using ScheduledWorkHandle = std::shared_ptr<ScheduledWork>;

// Every timer, delay and posted task goes through this interface, so that tests can step time
// with a manual clock instead of sleeping. All work runs on the thread that owns the scheduler
// (the main thread in the agent).
class Scheduler {
public:
    using Task = std::function<void()>;

    virtual ~Scheduler() = default;

    // Runs the task on the next turn of the event loop, after the current work.
    virtual void post(Task task) = 0;

    // Runs the task once, `seconds` from now.
    virtual ScheduledWorkHandle postAfter(double seconds, Task task) = 0;

    // Runs the task every `seconds`, first `seconds` from now, until cancelled.
    virtual ScheduledWorkHandle repeatEvery(double seconds, Task task) = 0;
};

} // namespace paneforge
