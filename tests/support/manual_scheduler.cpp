#include "manual_scheduler.h"

#include <algorithm>

namespace paneforge {

struct ManualScheduler::Entry final : ScheduledWork {
    double due = 0.0;
    double interval = 0.0;
    bool repeats = false;
    bool active = true;
    std::uint64_t sequence = 0;
    Task task;

    void cancel() override { active = false; }
    bool isActive() const override { return active; }
};

ManualScheduler::ManualScheduler() = default;
ManualScheduler::~ManualScheduler() = default;

void ManualScheduler::post(Task task) {
    posted_.push_back(std::move(task));
}

ScheduledWorkHandle ManualScheduler::postAfter(double seconds, Task task) {
    return schedule(seconds, std::move(task), false);
}

ScheduledWorkHandle ManualScheduler::repeatEvery(double seconds, Task task) {
    return schedule(seconds, std::move(task), true);
}

ScheduledWorkHandle ManualScheduler::schedule(double seconds, Task task, bool repeats) {
    auto entry = std::make_shared<Entry>();
    entry->due = now_ + std::max(0.0, seconds);
    entry->interval = std::max(0.0, seconds);
    entry->repeats = repeats;
    entry->sequence = sequence_++;
    entry->task = std::move(task);
    timers_.push_back(entry);
    return entry;
}

void ManualScheduler::runPosted() {
    while (!posted_.empty()) {
        auto batch = std::move(posted_);
        posted_.clear();
        for (auto& task : batch) {
            task();
        }
    }
}

std::shared_ptr<ManualScheduler::Entry> ManualScheduler::nextDue(double until) const {
    std::shared_ptr<Entry> best;
    for (const auto& entry : timers_) {
        if (!entry->active || entry->due > until) {
            continue;
        }
        if (!best || entry->due < best->due ||
            (entry->due == best->due && entry->sequence < best->sequence)) {
            best = entry;
        }
    }
    return best;
}

void ManualScheduler::advance(double seconds) {
    const double target = now_ + std::max(0.0, seconds);
    runPosted();
    while (auto entry = nextDue(target)) {
        now_ = std::max(now_, entry->due);
        if (entry->repeats && entry->interval > 0.0) {
            entry->due += entry->interval;
            entry->sequence = sequence_++;
        } else {
            entry->active = false;
        }
        auto task = entry->task; // the task may cancel or replace its own timer
        task();
        runPosted();
    }
    now_ = target;
    std::erase_if(timers_, [](const auto& entry) { return !entry->active; });
}

int ManualScheduler::activeTimerCount() const {
    return static_cast<int>(
        std::count_if(timers_.begin(), timers_.end(), [](const auto& e) { return e->active; }));
}

} // namespace paneforge
