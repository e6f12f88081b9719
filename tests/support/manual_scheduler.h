#pragma once

#include "app/runtime/scheduler.h"

#include <cstdint>
#include <vector>

namespace paneforge {

// A scheduler driven by hand: time stands still until advance() moves it.
class ManualScheduler final : public Scheduler {
public:
    void post(Task task) override { posted_.push_back(std::move(task)); }
    ScheduledWorkHandle postAfter(double seconds, Task task) override {
        return schedule(seconds, std::move(task), false);
    }
    ScheduledWorkHandle repeatEvery(double seconds, Task task) override {
        return schedule(seconds, std::move(task), true);
    }

    // Runs posted tasks (and the tasks they post) until none is left.
    void runPosted();
    // Moves the clock forward, running posted tasks and every timer that falls due, in time order.
    void advance(double seconds);
    int activeTimerCount() const;

private:
    struct Entry;
    std::vector<Task> posted_;
    std::vector<std::shared_ptr<Entry>> timers_;
    double now_ = 0.0;
    std::uint64_t sequence_ = 0;

    ScheduledWorkHandle schedule(double seconds, Task task, bool repeats);
};

} // namespace paneforge
