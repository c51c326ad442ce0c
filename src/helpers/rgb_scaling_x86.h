// The inner loops with vectors of 16 and of 32 bytes. Both are empty on other processors.
#pragma once

#if defined(__x86_64__)

#include "helpers/rgb_scaling_kernels.h"

namespace QMT::scaling {

extern Kernels const ssse3Kernels;
extern Kernels const avx2Kernels;

} // namespace QMT::scaling

#endif
