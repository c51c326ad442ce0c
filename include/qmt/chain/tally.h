// A count that costs the thread which keeps it next to nothing.
#pragma once

#include <atomic>
#include <cstdint>

namespace QMT {

// Raised by one thread at a time and read by any thread at any time; a reader gets one of the values that it
// has had. No operation waits, allocates or enters the system, and none is more than a load and a store. It
// says nothing about what else the other thread has done.
class Tally {
public:
    // The one thread.
    void Add(std::uint64_t more = 1) {
        value.store(value.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    // The one thread.
    void RaiseTo(std::uint64_t atLeast) {
        if (atLeast > value.load(std::memory_order_relaxed)) [[unlikely]]
            value.store(atLeast, std::memory_order_relaxed);
    }

    // While no thread raises it.
    void Zero() { value.store(0, std::memory_order_relaxed); }

    // Any thread.
    std::uint64_t Get() const { return value.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> value{0};
};

} // namespace QMT
