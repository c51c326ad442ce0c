#include "qmt/helpers/rgb_scaling.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "helpers/rgb_scaling_kernels.h"

namespace QMT {

namespace scaling {

namespace {

constexpr unsigned int largestFactor = 15;

// Outputs that fit no cache beside their source.
constexpr std::uint64_t streamedByDefault = 32 << 20;

// Rows are doubled in parts of this size where they do not go straight into the output: larger than what a
// processor has in its store queue, since what is still there cannot be loaded in other pieces than it was
// stored in.
constexpr std::size_t streamedPixels = 1280;

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

// Writes past the caches, in whole cache lines but for the first and the last: a line that is written in two
// parts costs several times as much.
class LineStream {
public:
    LineStream(Kernels const& inner, unsigned char* output) : kernels(inner), to(output) {}

    // For 6 * streamedPixels bytes, which Append then takes.
    unsigned char* Room() { return held + heldSize; }

    void Append(std::size_t size) {
        heldSize += size;
        std::size_t const begun = (reinterpret_cast<std::uintptr_t>(to) + heldSize) % lineSize;
        if (heldSize < begun)
            return;
        std::size_t const whole = heldSize - begun;
        kernels.stream(held, whole, to);
        std::memmove(held, held + whole, begun);
        to += whole;
        heldSize = begun;
    }

    void Finish() {
        kernels.stream(held, heldSize, to);
        kernels.finishStreams();
    }

private:
    static constexpr std::size_t lineSize = 64;

    Kernels const& kernels;
    unsigned char* to;
    std::size_t heldSize = 0;
    alignas(lineSize) unsigned char held[6 * streamedPixels + lineSize];
};

// The rows of a packed picture, to be doubled.
class RowDoubler {
public:
    RowDoubler(Kernels const& inner, unsigned char const* source, Extent whole, RGBConversionType wanted)
        : kernels(inner), first(source), planeStep(Product(whole.width, whole.height)), conversion(wanted) {}

    // Each of the pixels twice in a row.
    void Double(std::size_t pixel, std::size_t count, unsigned char* to) const {
        unsigned char const* const y = first + pixel;
        if (conversion == RGBPlain)
            kernels.doublePixels(first + 3 * pixel, count, to);
        else
            kernels.doubleYuv({y, y + planeStep, y + 2 * planeStep}, count, to);
    }

    // The same past the caches.
    void Stream(std::size_t pixel, std::size_t count, LineStream& stream) const {
        for (std::size_t done = 0; done < count; done += streamedPixels) {
            std::size_t const part = std::min(streamedPixels, count - done);
            Double(pixel + done, part, stream.Room());
            stream.Append(6 * part);
        }
    }

private:
    Kernels const& kernels;
    unsigned char const* first;
    std::size_t planeStep;
    RGBConversionType conversion;
};

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

void DoubleUp(Kernels const& kernels, std::uint64_t streamedSize, unsigned char const* source,
              unsigned int sourceWidth, unsigned int sourceHeight, unsigned char* destination,
              RGBConversionType conversion) {
    if (!IsInTable(conversion))
        return;
    std::size_t const width = sourceWidth;
    std::size_t const height = sourceHeight;
    std::size_t const rowLength = 6 * width;
    RowDoubler const doubler(kernels, source, {width, height}, conversion);
    if (conversion != RGBToYUV && 2 * rowLength * height >= streamedSize) {
        LineStream stream(kernels, destination);
        for (std::size_t row = 0; row < 2 * height; ++row)
            doubler.Stream(row / 2 * width, width, stream);
        stream.Finish();
        return;
    }
    for (std::size_t row = 0; row < height; ++row) {
        unsigned char* const upper = destination + 2 * row * rowLength;
        unsigned char* const lower = upper + rowLength;
        if (conversion != RGBToYUV)
            doubler.Double(row * width, width, upper);
        // The source row is half as long and in the nearest cache: without a conversion it is the faster
        // copy.
        if (conversion == RGBPlain)
            doubler.Double(row * width, width, lower);
        else
            kernels.copy(upper, rowLength, lower);
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
    scaling::DoubleUp(scaling::BestKernels(), scaling::streamedByDefault, source, sourceWidth, sourceHeight,
                      destination, conversion);
}

} // namespace QMT
