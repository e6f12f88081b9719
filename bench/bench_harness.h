#pragma once

// A small timing harness for the benchmarks: runs a body many times and prints the median and the
// 99th percentile. Figures only; nothing is asserted.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace paneforge::bench {

struct Figures {
    double medianMicros = 0.0;
    double p99Micros = 0.0;
    double meanMicros = 0.0;
};

template <typename Body> Figures measure(const std::string& name, int iterations, Body&& body) {
    using Clock = std::chrono::steady_clock;
    for (int i = 0; i < std::max(1, iterations / 10); ++i) {
        body(); // warm-up
    }
    std::vector<double> samples;
    samples.reserve(static_cast<size_t>(iterations));
    for (int i = 0; i < iterations; ++i) {
        const auto start = Clock::now();
        body();
        const auto end = Clock::now();
        samples.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    }
    std::sort(samples.begin(), samples.end());
    Figures figures;
    figures.medianMicros = samples[samples.size() / 2];
    figures.p99Micros = samples[std::min(samples.size() - 1, samples.size() * 99 / 100)];
    double sum = 0.0;
    for (double s : samples) {
        sum += s;
    }
    figures.meanMicros = sum / static_cast<double>(samples.size());
    std::printf("%-48s median %10.2f us   p99 %10.2f us   mean %10.2f us   (%d runs)\n",
                name.c_str(), figures.medianMicros, figures.p99Micros, figures.meanMicros,
                iterations);
    return figures;
}

} // namespace paneforge::bench
