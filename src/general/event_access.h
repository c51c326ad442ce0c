// What the wait on several events needs of an event's inside.
#pragma once

#include <atomic>
#include <cstdint>

#include "qmt/general/events.h"

namespace QMT {

// The word of an event: bit 0 says that somebody sleeps on it, bit 1 that its threshold was lowered once, the
// bits above are the count.
class EventAccess {
public:
    using Word = std::atomic<std::uint32_t>;

    static constexpr std::uint32_t sleeperBit = 1;
    static constexpr std::uint32_t loweredBit = 2;
    static constexpr std::uint32_t countOfOne = 4;

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
            if (event.staysSignalled || event.word.compare_exchange_weak(word, word % countOfOne))
                return true;
        return false;
    }

    // Takes the whole count off and gives it.
    static std::uint32_t TakeAll(Event& event) { return Count(event.word.fetch_and(countOfOne - 1)); }

    // Marks the event as slept on, unless it is signalled. Gives the word to sleep on, or 0 when the event is
    // signalled. The second look sees a threshold that was changed after the first and before the mark.
    static std::uint32_t AnnounceSleeper(Event& event) {
        std::uint32_t word = event.word.load(std::memory_order_acquire);
        while (!IsSignalled(event, word)) {
            if (event.word.compare_exchange_weak(word, word | sleeperBit))
                return IsSignalled(event, word) ? 0 : word | sleeperBit;
        }
        return 0;
    }
};

} // namespace QMT
