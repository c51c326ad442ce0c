#include "diagnostics/stamp_clock.h"

#include <algorithm>

#include "helpers/system_clock.h"

namespace QMT {

unsigned int StampClock::Read() {
    constexpr std::int64_t ticksInMillisecond = ticksPerSecond / 1000;
    std::uint64_t const from = platform::CycleCount();
    std::int64_t const ticks = ElapsedTicks();
    std::uint64_t const to = platform::CycleCount();
    if (readTicks != 0 && ticks > readTicks && from > readTo) // the clock ran then, and still does
        cyclesPerTick =
            std::max(cyclesPerTick, (from - readTo) / static_cast<std::uint64_t>(ticks - readTicks + 1));
    readTicks = ticks;
    readFrom = from;
    readTo = to;
    milliseconds = MillisecondsOf(ticks);
    // The tick that has begun may be nearly over.
    auto const wholeTicksLeft =
        static_cast<std::uint64_t>(ticksInMillisecond - ticks % ticksInMillisecond - 1);
    unchangedFor = cyclesPerTick * wholeTicksLeft;
    return milliseconds;
}

} // namespace QMT
