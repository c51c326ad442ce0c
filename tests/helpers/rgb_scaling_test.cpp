#include "qmt/helpers/rgb_scaling.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "helpers/rgb_scaling_division.h"
#include "helpers/rgb_scaling_kernels.h"
#include "support/seed.h"

namespace QMT {

namespace {

using Bytes = std::vector<unsigned char>;
using scaling::Kernels;
using scaling::Level;

struct Call {
    unsigned int width, height, bytesPerPixel, factor, outputWidth, outputHeight;
    RGBConversionType conversion;
    std::uint64_t rowLength;
};

std::vector<Kernels const*> AllKernels() {
    std::vector<Kernels const*> found;
    for (Level const level : {Level::Portable, Level::Ssse3, Level::Avx2})
        if (Kernels const* const kernels = scaling::FindKernels(level))
            found.push_back(kernels);
        else
            std::cout << "not on this processor: level " << static_cast<int>(level) << '\n';
    return found;
}

// Bytes that end with their last: behind it, and in front of the first, a sanitizer sees each access.
struct Exact {
    explicit Exact(Bytes const& content, std::size_t size) : start(new unsigned char[size]) {
        std::copy_n(content.begin(), size, start.get());
    }

    std::unique_ptr<unsigned char[]> start;
};

// Byte by byte what the functions do, noting how much of both pictures that takes.
struct Reference {
    Bytes const& source;
    Bytes output;
    std::size_t sourceSize = 0;
    std::size_t outputSize = 0;

    int Read(std::size_t at) {
        sourceSize = std::max(sourceSize, at + 1);
        return source.at(at);
    }

    void Write(std::size_t at, int value) {
        outputSize = std::max(outputSize, at + 1);
        output.at(at) = static_cast<unsigned char>(value);
    }

    static std::array<int, 3> Converted(std::array<int, 3> c, RGBConversionType conversion) {
        if (conversion == RGBPlain)
            return c;
        if (conversion == RGBToYUV)
            return {((66 * c[2] + 129 * c[1] + 25 * c[0] + 128) >> 8) + 16,
                    ((112 * c[0] - 74 * c[1] - 38 * c[2] + 128) >> 8) + 128,
                    ((112 * c[2] - 94 * c[1] - 18 * c[0] + 128) >> 8) + 128};
        int const y = 298 * (c[0] - 16);
        int const u = c[1] - 128;
        int const v = c[2] - 128;
        return {std::clamp((y + 516 * u + 128) >> 8, 0, 255),
                std::clamp((y - 100 * u - 208 * v + 128) >> 8, 0, 255),
                std::clamp((y + 409 * v + 128) >> 8, 0, 255)};
    }

    void Downsize(Call const& c) {
        std::size_t const pixelStep = c.conversion == YUVToRGB ? 1 : c.bytesPerPixel == 4 ? 4 : 3;
        std::size_t const channelStep = c.conversion == YUVToRGB ? std::size_t{c.width} * c.height : 1;
        std::size_t const rowLength = c.rowLength ? c.rowLength : 3 * c.outputWidth;
        for (std::size_t y = 0; y < std::min(c.height / c.factor, c.outputHeight); ++y)
            for (std::size_t x = 0; x < std::min(c.width / c.factor, c.outputWidth); ++x) {
                std::array<int, 3> sums{};
                for (std::size_t i = 0; i < c.factor * c.factor; ++i)
                    for (std::size_t channel = 0; channel < 3; ++channel)
                        sums[channel] +=
                            Read(channel * channelStep + (x * c.factor + i % c.factor) * pixelStep +
                                 (y * c.factor + i / c.factor) * c.width * c.bytesPerPixel);
                for (int& sum : sums)
                    sum /= static_cast<int>(c.factor * c.factor);
                std::array<int, 3> const values = Converted(sums, c.conversion);
                for (std::size_t channel = 0; channel < 3; ++channel)
                    Write(c.conversion == RGBToYUV
                              ? channel * c.outputWidth * c.outputHeight + y * (rowLength / 3) + x
                              : y * rowLength + 3 * x + channel,
                          values[channel]);
            }
    }

    void DoubleUp(std::size_t width, std::size_t height, RGBConversionType conversion) {
        for (std::size_t i = 0; i < width * height; ++i) {
            std::array<int, 3> const values =
                conversion == RGBPlain
                    ? std::array<int, 3>{Read(3 * i), Read(3 * i + 1), Read(3 * i + 2)}
                    : Converted({Read(i), Read(width * height + i), Read(2 * width * height + i)},
                                conversion);
            for (std::size_t copy = 0; copy < 12; ++copy)
                Write((2 * (i / width) + copy / 6) * 6 * width + 6 * (i % width) + copy % 6,
                      values[copy % 3]);
        }
    }
};

Bytes RandomBytes(std::mt19937& random, std::size_t size) {
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random() >> 8); });
    return bytes;
}

Bytes Downsized(Kernels const& kernels, Reference const& reference, Bytes const& before, Call const& c) {
    Exact const source(reference.source, reference.sourceSize);
    Exact const output(before, reference.outputSize);
    scaling::Downsize(kernels, source.start.get(), c.width, c.height, c.bytesPerPixel, c.factor,
                      output.start.get(), c.outputWidth, c.outputHeight, c.conversion, c.rowLength);
    return Bytes(output.start.get(), output.start.get() + reference.outputSize);
}

TEST(RgbScalingTest, EveryShrunkByteIsAsReckoned) {
    std::mt19937 random = SeededGenerator();
    Bytes const content = RandomBytes(random, 1 << 20);
    Bytes const before = RandomBytes(random, 1 << 20);
    auto const upTo = [&](unsigned int bound) { return static_cast<unsigned int>(random() % (bound + 1)); };
    for (unsigned int round = 0; round < 4 * 15 * 5 * 3; ++round) {
        unsigned int const factor = 1 + round % 15;
        Call c{upTo(110) * factor + upTo(factor),
               (1 + upTo(2)) * factor + upTo(factor),
               0,
               factor,
               upTo(120),
               1 + upTo(3),
               static_cast<RGBConversionType>(round / 15 % 3),
               0};
        c.bytesPerPixel = std::array{3U, 4U, 1U, 0U, 5U}[round / 45 % 5];
        if (round % 2 == 1)
            c.rowLength = 3 * c.outputWidth + upTo(40);
        Reference reference{content, before};
        reference.Downsize(c);
        reference.output.resize(reference.outputSize);
        for (Kernels const* const kernels : AllKernels())
            ASSERT_EQ(Downsized(*kernels, reference, before, c), reference.output)
                << kernels->name << ", factor " << factor << ", " << c.width << " x " << c.height << " x "
                << c.bytesPerPixel << ", conversion " << c.conversion << ", row length " << c.rowLength;
    }
}

TEST(RgbScalingTest, EveryDoubledByteIsAsReckoned) {
    std::mt19937 random = SeededGenerator();
    Bytes const content = RandomBytes(random, 1 << 14);
    for (unsigned int round = 0; round < 60; ++round) {
        // The widest row is streamed in two parts.
        auto const width = static_cast<unsigned int>(round < 4 ? 1000 + round : random() % 70);
        auto const height = static_cast<unsigned int>(round < 4 ? 1 : random() % 4);
        RGBConversionType const conversion = round % 2 == 0 ? RGBPlain : YUVToRGB;
        Reference reference{content, Bytes(12 * width * height)};
        reference.DoubleUp(width, height, conversion);
        for (Kernels const* const kernels : AllKernels())
            for (std::uint64_t const streamedSize : {std::uint64_t{0}, ~std::uint64_t{0}}) {
                Exact const source(content, reference.sourceSize);
                std::size_t const offset = round % 17;
                Exact const output(content, offset + reference.outputSize);
                unsigned char* const first = output.start.get() + offset;
                scaling::DoubleUp(*kernels, streamedSize, source.start.get(), width, height, first,
                                  conversion);
                ASSERT_EQ(Bytes(first, first + reference.outputSize), reference.output)
                    << kernels->name << ' ' << width << " x " << height << ", conversion " << conversion;
            }
    }
}

// The green channel, or U, in steps of 5, 0 and 255 among them; the other two in all their values.
TEST(RgbScalingTest, EveryColourIsConvertedAsReckoned) {
    for (RGBConversionType const conversion : {RGBToYUV, YUVToRGB})
        for (std::size_t middle = 0; middle <= 255; middle += 5) {
            Bytes colours(3 << 16);
            for (std::size_t i = 0; i < colours.size() / 3; ++i)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    colours[conversion == RGBToYUV ? 3 * i + channel : (channel << 16) + i] =
                        static_cast<unsigned char>(std::array{i >> 8, middle, i & 255}[channel]);
            Call const c{256, 256, conversion == RGBToYUV ? 3U : 1U, 1, 256, 256, conversion, 0};
            Reference reference{colours, Bytes(3 << 16)};
            reference.Downsize(c);
            for (Kernels const* const kernels : AllKernels())
                ASSERT_EQ(Downsized(*kernels, reference, colours, c), reference.output) << kernels->name;
        }
}

TEST(RgbScalingTest, DivisionIsExact) {
    for (unsigned int factor = 3; factor <= 15; ++factor) {
        scaling::Division const d = scaling::DivisionBySquareOf(factor);
        for (unsigned int sum = 0; sum <= 255 * factor * factor; ++sum)
            ASSERT_EQ((((sum >> d.before) * d.multiplier) >> 16) >> d.after, sum / (factor * factor))
                << factor;
    }
}

TEST(RgbScalingTest, KnownPictures) {
    struct Case {
        Call call;
        Bytes source;
        Bytes expected; // where nothing is written, 7 stays
    };

    Bytes steps(75);
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps[i] = static_cast<unsigned char>(i);
    auto const unknown = static_cast<RGBConversionType>(3);
    for (auto const& [c, source, expected] : std::initializer_list<Case>{
             {{1, 2, 4, 1, 1, 2, RGBPlain, 0}, {1, 2, 3, 0, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
             {{5, 5, 3, 2, 2, 2, RGBPlain, 0}, steps, {9, 10, 11, 15, 16, 17, 39, 40, 41, 45, 46, 47}},
             {{5, 5, 3, 2, 1, 3, RGBPlain, 5}, steps, {9, 10, 11, 7, 7, 39, 40, 41, 7, 7, 7, 7, 7, 7, 7}},
             {{2, 1, 3, 1, 2, 1, RGBToYUV, 0}, {0, 0, 0, 255, 255, 255}, {16, 235, 128, 128, 128, 128}},
             {{2, 1, 1, 1, 2, 1, YUVToRGB, 0}, {16, 255, 128, 255, 128, 255}, {0, 0, 0, 255, 125, 255}},
             {{5, 5, 3, 6, 1, 1, RGBPlain, 0}, steps, {7, 7, 7}},
             {{5, 5, 3, 0, 1, 1, RGBPlain, 0}, steps, {7, 7, 7}},
             {{16, 16, 3, 16, 1, 1, RGBPlain, 0}, {}, {7, 7, 7}},
             {{5, 5, 3, 1, 1, 1, unknown, 0}, steps, {7, 7, 7}}}) {
        Bytes output(expected.size(), 7);
        DownsizeRGB(source.data(), c.width, c.height, c.bytesPerPixel, c.factor, output.data(), c.outputWidth,
                    c.outputHeight, c.conversion, c.rowLength);
        EXPECT_EQ(output, expected) << "factor " << c.factor << ", conversion " << c.conversion;
    }
    Bytes rows{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    DoubleUpRGB(steps.data(), 1, 1, rows.data(), unknown);
    EXPECT_EQ(rows[6], 7);
    DoubleUpRGB(steps.data(), 1, 1, rows.data(), RGBToYUV);
    EXPECT_EQ(rows, (Bytes{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}));
    DoubleUpRGB(steps.data() + 8, 1, 1, rows.data(), RGBPlain);
    EXPECT_EQ(rows, (Bytes{8, 9, 10, 8, 9, 10, 8, 9, 10, 8, 9, 10}));
}

// Planes of 1.6 thousand million bytes begin beyond 32 bits.
TEST(RgbScalingTest, LargePicturesHaveTheirPlanesInPlace) {
    constexpr unsigned int width = 40'000;
    constexpr std::size_t plane = std::size_t{width} * width;
    std::unique_ptr<unsigned char[], decltype(&std::free)> const planes(
        static_cast<unsigned char*>(std::calloc(3, plane)), &std::free);
    if (!planes)
        GTEST_SKIP() << "no room for a picture of 40000 x 40000";
    unsigned char pixel[3] = {255, 255, 255};
    DownsizeRGB(pixel, 1, 1, 3, 1, planes.get(), width, width, RGBToYUV, 0);
    EXPECT_EQ((Bytes{planes[0], planes[plane], planes[2 * plane]}), (Bytes{235, 128, 128}));
    DownsizeRGB(planes.get(), width, width, 1, 1, pixel, 1, 1, YUVToRGB, 0);
    EXPECT_EQ(Bytes(pixel, pixel + 3), Bytes(3, 255));
}

} // namespace
} // namespace QMT
