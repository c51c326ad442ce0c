// The processor's own counter, which is cheaper to read than a clock.
#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <cpuid.h>
#include <x86intrin.h>
#endif

namespace QMT::platform {

// Counts at a rate that is not known. Always 0 where there is no such counter. Does not enter the system.
inline std::uint64_t CycleCount() {
#if defined(__x86_64__)
    return __rdtsc();
#else
    return 0;
#endif
}

// Whether the rate stays the same whatever the processor does, also while it sleeps, and the count is the
// same on all processors as far as the system sees to that. Otherwise the count may stand still. Slow on
// virtual machines.
inline bool CycleCountIsSteady() {
#if defined(__x86_64__)
    constexpr unsigned int leaf = 0x80000007;
    constexpr unsigned int invariantBit = 1U << 8;
    unsigned int a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid(leaf, &a, &b, &c, &d) != 0 && (d & invariantBit) != 0;
#else
    return false;
#endif
}

} // namespace QMT::platform
