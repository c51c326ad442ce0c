// The inner loops of picture scaling, which exist several times for different processors. All give the same
// bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "qmt/export.h"
#include "qmt/helpers/rgb_scaling.h"

namespace QMT::scaling {

// One row in three channels, a byte each: B, G, R or Y, U, V.
using ChannelRow = std::array<unsigned char const*, 3>;
using OutputChannelRow = std::array<unsigned char*, 3>;

// The source rows that one output row is made of: `count` blocks of factor x factor pixels.
struct BlockRow {
    unsigned char const* first; // the upper left pixel
    std::size_t rowStep;        // bytes from one source row to the next
    std::size_t pixelStep;      // 4 or 3 bytes; 1 in a plane
    unsigned int factor;        // 1 to 15
    std::size_t count;          // at least 1
    std::size_t
        readableInLowest; // bytes of the source from the start of the block's lowest row to the source's end

    std::size_t BlockStep() const { return factor * pixelStep; }
};

// Averages may be written, and packed ones read, up to this many bytes beyond their count.
constexpr std::size_t averagesOverrun = 128;

// Inner loops for one kind of processor. Packed pixels are B, G, R and a byte that does not count. Everything
// but averages is written exactly.
struct Kernels {
    char const* name;
    void (*averagePixels)(BlockRow const& block, unsigned char* packed);
    void (*averagePlane)(BlockRow const& block, unsigned char* averages); // factors from 2 on
    void (*storePixels)(unsigned char const* packed, std::size_t count, unsigned char* to);
    void (*convertToYuv)(unsigned char const* packed, std::size_t count, OutputChannelRow const& to);
    void (*convertToRgb)(ChannelRow const& from, std::size_t count, unsigned char* to); // interleaved
    void (*doublePixels)(unsigned char const* from, std::size_t count, unsigned char* to);
    void (*doubleYuv)(ChannelRow const& from, std::size_t count, unsigned char* to); // interleaved
};

// The slowest first.
enum class Level { Portable, Ssse3, Avx2 };

// Null where the build or the processor has none.
QMT_UTILU_API Kernels const* FindKernels(Level level);

// The fastest that this processor has.
Kernels const& BestKernels();

// DownsizeRGB and DoubleUpRGB with given kernels.
QMT_UTILU_API void Downsize(Kernels const& kernels, unsigned char const* source, unsigned int sourceWidth,
                            unsigned int sourceHeight, unsigned int sourceBytesPerPixel, unsigned int factor,
                            unsigned char* destination, unsigned int destinationWidth,
                            unsigned int destinationHeight, RGBConversionType conversion,
                            std::uint64_t destinationRowLength);
QMT_UTILU_API void DoubleUp(Kernels const& kernels, unsigned char const* source, unsigned int sourceWidth,
                            unsigned int sourceHeight, unsigned char* destination,
                            RGBConversionType conversion);

} // namespace QMT::scaling
