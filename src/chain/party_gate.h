// Keeps the parties of a parallel stage in step.
#pragma once

#include <atomic>
#include <cstdint>

#include "qmt/general/events.h"
#include "qmt/general/threads.h"

namespace QMT {

// One for each link that can be a party. Two pushes may arrive before the stage has freed a slot: the party
// that has ended its read would then read the same slot again, and its two ends would pass for those of two
// parties. So a party that has ended a read waits until the stage has freed the slot, before it takes the
// next count.
//
// The gate belongs to the party, since the stage may be destroyed first. It is shut while the party has ended
// more reads than the stage has released.
class PartyGate {
public:
    // Sets the gate up for a stage, whose end-of-read semaphore it is; open. Nobody runs.
    void Join(CountingSemaphore const* endReadSemaphore);

    // Opens the gate for good. Nobody runs.
    void Leave();

    // The party's thread: waits until the gate is open; false when the stop event is signalled first.
    bool Pass(Event* stopEvent);

    // The party's thread: it has ended a read that `endReadSemaphore` counts.
    void CountEndedRead(CountingSemaphore const* endReadSemaphore);

    // The stage's thread: the slot of which each party has ended its read is free.
    void Release();

    bool IsOpen() const {
        std::uint32_t const ahead =
            ended.load(std::memory_order_relaxed) - released.load(std::memory_order_acquire);
        return static_cast<std::int32_t>(ahead) <= 0;
    }

private:
    CountingSemaphore const* joined = nullptr;
    std::atomic<std::uint32_t> ended{0};
    std::atomic<std::uint32_t> released{0};
    Event opened{true};
    SVArray<Event*, Event*> waitEvents;
};

} // namespace QMT
