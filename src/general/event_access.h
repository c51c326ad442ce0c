// What the wait on several events needs of an event's inside.
#pragma once

#include <atomic>
#include <cstdint>

#include "qmt/general/events.h"

namespace QMT {

// The word of an event: bit 0 says that somebody sleeps on it, the bits above are the count.
class EventAccess {
public:
    using Word = std::atomic<std::uint32_t>;

    static constexpr std::uint32_t sleeperBit = 1;
    static constexpr std::uint32_t countOfOne = 2;

    static std::uint32_t Count(std::uint32_t word) { return word / countOfOne; }

    static Word& WordOf(Event& event) { return event.word; }

    static bool IsSignalled(Event const& event, std::uint32_t word) {
        return Count(word) >= event.Threshold();
    }

    static bool IsSignalled(Event const& event) {
        return IsSignalled(event, event.word.load(std::memory_order_acquire));
    }

    // True when the event is signalled and the caller's wait may end by it: of the waits on an event that
    // does not stay signalled only one gets the signal.
    static bool EndsWait(Event& event) {
        std::uint32_t word = event.word.load(std::memory_order_acquire);
        while (IsSignalled(event, word))
            if (event.staysSignalled || event.word.compare_exchange_weak(word, word & sleeperBit))
                return true;
        return false;
    }

    // Marks the event as slept on, unless it is signalled. Gives the word to sleep on, or nothing to sleep
    // on (an even number) when the event is signalled.
    static std::uint32_t AnnounceSleeper(Event& event) {
        std::uint32_t word = event.word.load(std::memory_order_acquire);
        while (!IsSignalled(event, word)) {
            if (event.word.compare_exchange_weak(word, word | sleeperBit))
                return word | sleeperBit;
        }
        return 0;
    }
};

} // namespace QMT
