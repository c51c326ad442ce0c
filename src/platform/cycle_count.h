// The processor's own counter, which is cheaper to read than a clock.
#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

namespace QMT::platform {

// Counts at a rate that is not known, but stays the same, and on all processors alike as far as the system
// sees to that. Always 0 where there is no such counter. Does not enter the system.
inline std::uint64_t CycleCount() {
#if defined(__x86_64__)
    return __rdtsc();
#else
    return 0;
#endif
}

} // namespace QMT::platform
