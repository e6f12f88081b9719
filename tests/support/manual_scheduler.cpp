#include "manual_scheduler.h"

#include <algorithm>
#include <tuple>

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
    // Active timers first, then by due time, then in the order they were (re)scheduled.
    auto order() const { return std::tuple(!active, due, sequence); }
};

ScheduledWorkHandle ManualScheduler::schedule(double seconds, Task task, bool repeats) {
    auto entry = std::make_shared<Entry>();
    entry->interval = std::max(0.0, seconds);
    entry->due = now_ + entry->interval;
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

void ManualScheduler::advance(double seconds) {
    const double target = now_ + std::max(0.0, seconds);
    runPosted();
    for (;;) {
        const auto next = std::min_element(timers_.begin(), timers_.end(), [](auto& a, auto& b) {
            return a->order() < b->order();
        });
        if (next == timers_.end() || !(*next)->active || (*next)->due > target) {
            break;
        }
        const std::shared_ptr<Entry> entry = *next; // the task may add timers
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
