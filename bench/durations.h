// Single durations, for what an average does not show.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

template <typename Action>
Clock::duration TimeOf(Action action) {
    Clock::time_point const start = Clock::now();
    action();
    return Clock::now() - start;
}

// Collects up to `count` durations without allocating.
class Durations {
public:
    explicit Durations(benchmark::IterationCount count) { seconds.reserve(static_cast<std::size_t>(count)); }

    // Gives the duration in seconds.
    double Add(Clock::duration duration) { return seconds.emplace_back(Seconds(duration)); }

    // Makes the median and the 99th percentile counters of the benchmark, in seconds. There must be one.
    void Report(benchmark::State& state, std::string const& name) {
        state.counters[name + "p50"] = Percentile(50);
        state.counters[name + "p99"] = Percentile(99);
    }

private:
    double Percentile(std::size_t percent) {
        auto const place = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() * percent / 100);
        std::nth_element(seconds.begin(), place, seconds.end());
        return *place;
    }

    std::vector<double> seconds;
};

} // namespace bench
