#include "qmt/helpers/rgb_scaling.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "helpers/rgb_scaling_kernels.h"

namespace QMT {

namespace scaling {

namespace {

constexpr unsigned int largestFactor = 15;

bool IsInTable(RGBConversionType conversion) {
    return conversion == RGBPlain || conversion == RGBToYUV || conversion == YUVToRGB;
}

std::size_t Product(std::size_t a, std::size_t b) {
    return a * b;
}

// The parts of a picture's planes, or of its interleaved pixels, that a call works on.
struct Extent {
    std::size_t width;
    std::size_t height;
};

// The source of a call: its rows of blocks.
class BlockRows {
public:
    BlockRows(unsigned char const* source, Extent whole, std::size_t bytesPerPixel, unsigned int blockFactor,
              bool isPlanar, Extent blocks)
        : first(source),
          rowStep(Product(whole.width, bytesPerPixel)),
          planeStep(isPlanar ? Product(whole.width, whole.height) : 0),
          pixelStep(isPlanar             ? 1
                    : bytesPerPixel == 4 ? 4
                                         : 3),
          factor(blockFactor),
          count(blocks.width),
          end(End(blocks.height, isPlanar)) {}

    BlockRow Row(std::size_t row, std::size_t plane) const {
        std::size_t const start = row * factor * rowStep + plane * planeStep;
        std::size_t const lowest = start + (factor - 1) * rowStep;
        return {first + start, rowStep, pixelStep, factor, count, end - lowest};
    }

private:
    // Behind the last byte that counts: a fourth byte of the last pixel need not be there.
    std::size_t End(std::size_t height, bool isPlanar) const {
        std::size_t const lastRow = (height * factor - 1) * rowStep;
        std::size_t const lastPixel = (count * factor - 1) * pixelStep;
        return 2 * planeStep + lastRow + lastPixel + (isPlanar ? 1 : 3);
    }

    unsigned char const* first;
    std::size_t rowStep;
    std::size_t planeStep;
    std::size_t pixelStep;
    unsigned int factor;
    std::size_t count;
    std::size_t end;
};

// One row of averages, the memory of a call.
class Averages {
public:
    explicit Averages(std::size_t width)
        : planeSize(width + averagesOverrun),
          bytes(std::make_unique_for_overwrite<unsigned char[]>(4 * planeSize)) {}

    unsigned char* Packed() const { return bytes.get(); }

    unsigned char* Plane(std::size_t plane) const { return bytes.get() + plane * planeSize; }

private:
    std::size_t planeSize;
    std::unique_ptr<unsigned char[]> bytes;
};

struct Output {
    unsigned char* first;
    Extent whole;
    Extent written;
    std::size_t rowStep;
};

// A plane is its own average by 1.
unsigned char const* AveragedPlane(Kernels const& kernels, BlockRow const& row, unsigned char* averages) {
    if (row.factor == 1)
        return row.first;
    kernels.averagePlane(row, averages);
    return averages;
}

void DownsizePlanes(Kernels const& kernels, BlockRows const& source, Output const& output) {
    Averages const averages(output.written.width);
    for (std::size_t row = 0; row < output.written.height; ++row) {
        ChannelRow planes{};
        for (std::size_t plane = 0; plane < planes.size(); ++plane)
            planes[plane] = AveragedPlane(kernels, source.Row(row, plane), averages.Plane(plane));
        kernels.convertToRgb(planes, output.written.width, output.first + row * output.rowStep);
    }
}

void DownsizePixels(Kernels const& kernels, BlockRows const& source, Output const& output, bool isYuv) {
    Averages const averages(output.written.width);
    std::size_t const planeStep = Product(output.whole.width, output.whole.height);
    for (std::size_t row = 0; row < output.written.height; ++row) {
        kernels.averagePixels(source.Row(row, 0), averages.Packed());
        if (isYuv) {
            unsigned char* const y = output.first + row * (output.rowStep / 3);
            kernels.convertToYuv(averages.Packed(), output.written.width,
                                 {y, y + planeStep, y + 2 * planeStep});
        } else
            kernels.storePixels(averages.Packed(), output.written.width, output.first + row * output.rowStep);
    }
}

} // namespace

void Downsize(Kernels const& kernels, unsigned char const* source, unsigned int sourceWidth,
              unsigned int sourceHeight, unsigned int sourceBytesPerPixel, unsigned int factor,
              unsigned char* destination, unsigned int destinationWidth, unsigned int destinationHeight,
              RGBConversionType conversion, std::uint64_t destinationRowLength) {
    if (factor == 0 || factor > largestFactor || !IsInTable(conversion))
        return;
    Extent const whole{destinationWidth, destinationHeight};
    Extent const written{std::min(sourceWidth / factor, destinationWidth),
                         std::min(sourceHeight / factor, destinationHeight)};
    if (written.width == 0 || written.height == 0)
        return;
    bool const isPlanar = conversion == YUVToRGB;
    BlockRows const rows(source, {sourceWidth, sourceHeight}, sourceBytesPerPixel, factor, isPlanar, written);
    Output const output{destination, whole, written,
                        destinationRowLength ? destinationRowLength : 3 * whole.width};
    if (isPlanar)
        DownsizePlanes(kernels, rows, output);
    else
        DownsizePixels(kernels, rows, output, conversion == RGBToYUV);
}

void DoubleUp(Kernels const& kernels, unsigned char const* source, unsigned int sourceWidth,
              unsigned int sourceHeight, unsigned char* destination, RGBConversionType conversion) {
    if (!IsInTable(conversion) || sourceWidth == 0)
        return;
    std::size_t const width = sourceWidth;
    std::size_t const rowLength = 6 * width;
    std::size_t const planeStep = Product(width, sourceHeight);
    for (std::size_t row = 0; row < sourceHeight; ++row) {
        unsigned char const* const y = source + row * width;
        unsigned char* const upper = destination + 2 * row * rowLength;
        unsigned char* const lower = upper + rowLength;
        if (conversion == RGBPlain) {
            // Once more from the source, which is half as long as the output row, is faster than a copy.
            kernels.doublePixels(source + 3 * row * width, width, upper);
            kernels.doublePixels(source + 3 * row * width, width, lower);
            continue;
        }
        if (conversion == YUVToRGB)
            kernels.doubleYuv({y, y + planeStep, y + 2 * planeStep}, width, upper);
        std::memcpy(lower, upper, rowLength);
    }
}

} // namespace scaling

void DownsizeRGB(unsigned char const* source, unsigned int sourceWidth, unsigned int sourceHeight,
                 unsigned int sourceBytesPerPixel, unsigned int factor, unsigned char* destination,
                 unsigned int destinationWidth, unsigned int destinationHeight, RGBConversionType conversion,
                 std::uint64_t destinationRowLength) {
    scaling::Downsize(scaling::BestKernels(), source, sourceWidth, sourceHeight, sourceBytesPerPixel, factor,
                      destination, destinationWidth, destinationHeight, conversion, destinationRowLength);
}

void DoubleUpRGB(unsigned char const* source, unsigned int sourceWidth, unsigned int sourceHeight,
                 unsigned char* destination, RGBConversionType conversion) {
    scaling::DoubleUp(scaling::BestKernels(), source, sourceWidth, sourceHeight, destination, conversion);
}

} // namespace QMT
