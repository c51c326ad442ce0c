// The arithmetic of the millisecond clock.
#pragma once

#include <cstdint>

namespace QMT {

// Ticks of the clock's counter in a second. A thousandfold of the count stays within 64 bits for 29,000
// years.
inline constexpr std::int64_t ticksPerSecond = 10'000'000;

// Ticks since the clock was started, 0 before that.
std::int64_t ElapsedTicks();

// The clock's reading so many ticks behind its start: it loses one at each wrap of the 32 bits.
constexpr unsigned int MillisecondsOf(std::int64_t elapsedTicks) {
    auto const milliseconds = static_cast<std::uint64_t>(elapsedTicks * 1000 / ticksPerSecond);
    return static_cast<std::uint32_t>(milliseconds) - static_cast<std::uint32_t>(milliseconds >> 32);
}

} // namespace QMT
