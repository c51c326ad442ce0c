// The millisecond clock for those who read it many times in a millisecond.
#pragma once

#include <cstdint>

#include "platform/cycle_count.h"

namespace QMT {

// Gives what `GetMillisecsCount` does, and reads the clock only when the millisecond may have changed, which
// the processor's counter tells: that takes a third of the time. Where that counter cannot be relied on it
// reads the clock each time. The caller lets one thread at a time in.
class StampClock {
public:
    unsigned int Milliseconds() {
        return platform::CycleCount() - readFrom < unchangedFor ? milliseconds : Read();
    }

private:
    unsigned int Read();
    void MeasureRate(std::int64_t ticks, std::uint64_t readTo);

    bool const countIsSteady = platform::CycleCountIsSteady();
    unsigned int milliseconds = 0;
    std::uint64_t readFrom = 0;      // the counter's value before the clock was read
    std::uint64_t unchangedFor = 0;  // cycles from readFrom on in which the millisecond is the same
    std::uint64_t cyclesPerTick = 0; // at least; 0 while it is not known
    std::int64_t measureTicks = 0;   // the clock's reading at which its measure began,
    std::uint64_t measureFrom = 0;   // and the counter's behind it
};

} // namespace QMT
