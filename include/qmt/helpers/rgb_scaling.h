// Pictures in memory, shrunk or doubled, with a conversion between RGB and YUV on the way.
#pragma once

#include <cstdint>

#include "qmt/export.h"

namespace QMT {

// Interleaved pictures are rows of pixels of three or four bytes: blue, green, red, and a fourth that is
// skipped and never written. Planar ones are three planes of one byte a pixel behind each other: Y, U and V
// of ITU-R BT.601 in the studio ranges (black is 16, 128, 128, white 235, 128, 128).
enum RGBConversionType {
    RGBPlain = 0, // interleaved to interleaved, colours as they are
    RGBToYUV = 1, // interleaved to planar
    YUVToRGB = 2, // planar to interleaved; what leaves 0 to 255 is limited to it
};

// Shrinks a picture by a whole factor, from 1 to 15: each output pixel is the average of factor x factor
// source pixels, rounded down in each channel, and then converted. The output is as large as both source and
// destination allow, source size / factor and destination size, and begins at the upper left of both; bytes
// of the destination outside it stay as they are.
//
// Sizes are in pixels. Source bytes per pixel times source width is the number of bytes from one source row
// to the next, in a plane too, so that packed planes take 1; interleaved pixels have four bytes where it is
// 4, else three. The planes of the source begin at multiples of source width x source height, those of the
// destination at multiples of destination width x destination height. Destination row length is the number of
// bytes from one output row to the next, a third of it in a plane; 0 means destination width x 3.
//
// Nothing is written with another factor or conversion. The two pictures must not overlap. From any thread;
// makes one allocation, of the size of an output row, and throws std::bad_alloc before anything is written.
QMT_UTILU_API void DownsizeRGB(unsigned char const* source, unsigned int sourceWidth,
                               unsigned int sourceHeight, unsigned int sourceBytesPerPixel,
                               unsigned int factor, unsigned char* destination, unsigned int destinationWidth,
                               unsigned int destinationHeight, RGBConversionType conversion,
                               std::uint64_t destinationRowLength);

// Doubles a picture by writing each pixel twice in each of two rows. Sizes are in pixels of the source.
// Interleaved pixels have three bytes on both sides, and all rows and planes are packed: the destination
// holds 12 x width x height bytes. The two pictures must not overlap.
//
// RGBPlain and YUVToRGB only: with RGBToYUV each second output row becomes a copy of the row above it and
// nothing else happens, with other values nothing at all. From any thread; allocates nothing.
QMT_UTILU_API void DoubleUpRGB(unsigned char const* source, unsigned int sourceWidth,
                               unsigned int sourceHeight, unsigned char* destination,
                               RGBConversionType conversion);

} // namespace QMT
