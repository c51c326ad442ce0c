// The inner loops for any processor; those for vectors leave them what does not fill a vector.
#pragma once

#include "helpers/rgb_scaling_kernels.h"

namespace QMT::scaling::portable {

// The averages from `begin` on.
void AveragePixels(BlockRow const& block, std::size_t begin, unsigned char* packed);
void AveragePlane(BlockRow const& block, std::size_t begin, unsigned char* averages);

void StorePixels(unsigned char const* packed, std::size_t count, unsigned char* to);
void ConvertToYuv(unsigned char const* packed, std::size_t count, OutputChannelRow const& to);
void ConvertToRgb(ChannelRow const& from, std::size_t count, unsigned char* to);
void DoublePixels(unsigned char const* from, std::size_t count, unsigned char* to);
void DoubleYuv(ChannelRow const& from, std::size_t count, unsigned char* to);

extern Kernels const kernels;

} // namespace QMT::scaling::portable
