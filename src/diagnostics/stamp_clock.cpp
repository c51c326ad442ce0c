#include "diagnostics/stamp_clock.h"

#include <algorithm>

#include "helpers/system_clock.h"

namespace QMT {

unsigned int StampClock::Read() {
    constexpr std::int64_t ticksInMillisecond = ticksPerSecond / 1000;
    readFrom = platform::CycleCount();
    std::int64_t const ticks = ElapsedTicks();
    MeasureRate(ticks, platform::CycleCount());
    milliseconds = MillisecondsOf(ticks);
    // The tick that has begun may be nearly over.
    auto const wholeTicksLeft =
        static_cast<std::uint64_t>(ticksInMillisecond - ticks % ticksInMillisecond - 1);
    unchangedFor = cyclesPerTick * wholeTicksLeft;
    return milliseconds;
}

// Again and again, and within bounds: a count may jump, as when a virtual machine moves to another host.
void StampClock::MeasureRate(std::int64_t ticks, std::uint64_t readTo) {
    constexpr std::int64_t shortestMeasure = ticksPerSecond / 10'000;
    constexpr std::uint64_t mostCyclesPerTick = 10'000'000'000 / ticksPerSecond;
    std::int64_t const passed = ticks - measureTicks;
    if (passed < shortestMeasure || !countIsSteady)
        return;
    bool const hasBegun = measureTicks != 0; // the clock ran then, and still does
    cyclesPerTick =
        hasBegun && readFrom > measureFrom
            ? std::min((readFrom - measureFrom) / static_cast<std::uint64_t>(passed + 1), mostCyclesPerTick)
            : 0;
    measureTicks = ticks;
    measureFrom = readTo;
}

} // namespace QMT
