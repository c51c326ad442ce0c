// A hint to the processor.
#pragma once

namespace QMT::platform {

// Brings the cache line at `address` to this processor, ready to be written, while the caller goes on.
// Changes nothing that can be seen, and does nothing where the compiler has no way to say it.
inline void FetchForWriting(unsigned char const* address) {
#if defined(__GNUC__) && defined(__x86_64__)
    // The builtin would fetch for reading, unless the compiler is told the processor's model. A model that
    // does not know the instruction ignores it.
    __asm__ volatile("prefetchw %0" : : "m"(*address));
#elif defined(__GNUC__)
    __builtin_prefetch(address, 1);
#else
    static_cast<void>(address);
#endif
}

} // namespace QMT::platform
