// Which inner loops this processor can run.
#include "helpers/rgb_scaling_kernels.h"

#include "helpers/rgb_scaling_portable.h"
#include "helpers/rgb_scaling_x86.h"

namespace QMT::scaling {

Kernels const* FindKernels(Level level) {
    if (level == Level::Portable)
        return &portable::kernels;
#if defined(__x86_64__)
    if (level == Level::Ssse3 && __builtin_cpu_supports("ssse3"))
        return &ssse3Kernels;
    if (level == Level::Avx2 && __builtin_cpu_supports("avx2"))
        return &avx2Kernels;
#endif
    return nullptr;
}

Kernels const& BestKernels() {
    for (Level const level : {Level::Avx2, Level::Ssse3})
        if (Kernels const* const found = FindKernels(level))
            return *found;
    return portable::kernels;
}

} // namespace QMT::scaling
