#include "bench_harness.h"
#include "manual_scheduler.h"

// Baseline of the harness itself: the cost of scheduling and running one delayed task.
int main() {
    paneforge::ManualScheduler scheduler;
    int runs = 0;
    paneforge::bench::measure("ManualScheduler postAfter+advance", 20000, [&] {
        scheduler.postAfter(0.08, [&] { ++runs; });
        scheduler.advance(0.1);
    });
    return runs > 0 ? 0 : 1;
}
