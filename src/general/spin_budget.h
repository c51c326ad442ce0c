// How long a thread looks again and again before it sleeps.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "platform/waiting.h"

namespace QMT {

// A waiter that spins gets its event within a fraction of a microsecond, one that sleeps within about five.
// Spinning pays only where waits are short and a processor is to spare, so each thread earns the right to
// spin: by sleeping shortly, and ever more often after each spin that was in vain. An idle thread never
// spins.
class SpinBudget {
public:
    using Clock = std::chrono::steady_clock;

    // Looks with `isDone` until it gives true or the budget is spent; gives its last result.
    template <typename Look>
    bool Spin(Look isDone) {
        if (shortSleepsNeeded > 0 || !TakeProcessor())
            return false;
        bool const done = SpinUntil(Clock::now() + longestSpin, isDone);
        spinning.fetch_sub(1, std::memory_order_relaxed);
        if (done) {
            penalty = 1;
        } else {
            penalty = std::min(penalty * 2, greatestPenalty);
            shortSleepsNeeded = penalty;
        }
        return done;
    }

    // Learns how long a sleep took.
    void Slept(Clock::duration duration) {
        if (duration < shortSleep && shortSleepsNeeded > 0)
            --shortSleepsNeeded;
        else if (duration >= shortSleep)
            shortSleepsNeeded = std::max(shortSleepsNeeded, penalty);
    }

private:
    static constexpr std::chrono::microseconds longestSpin{20};
    static constexpr std::chrono::microseconds shortSleep{40};
    static constexpr std::uint32_t greatestPenalty = 1024;
    static constexpr int looksPerClockReading = 16;

    // Of all processors one is left to those who work.
    static bool TakeProcessor() {
        if (spinning.fetch_add(1, std::memory_order_relaxed) < spinnersAllowed)
            return true;
        spinning.fetch_sub(1, std::memory_order_relaxed);
        return false;
    }

    template <typename Look>
    static bool SpinUntil(Clock::time_point end, Look isDone) {
        do {
            for (int i = 0; i < looksPerClockReading; ++i) {
                if (isDone())
                    return true;
                platform::RelaxProcessor();
            }
        } while (Clock::now() < end);
        return false;
    }

    // Found when the library is loaded, since it enters the system.
    static inline unsigned int const spinnersAllowed = platform::ProcessorCount() - 1;

    static inline std::atomic<unsigned int> spinning{0};

    std::uint32_t penalty = 4;
    std::uint32_t shortSleepsNeeded = 4;
};

} // namespace QMT
