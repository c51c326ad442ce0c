#include "qmt/helpers/rgb_scaling.h"

#include "helpers/rgb_scaling_division.h"
#include "helpers/rgb_scaling_kernels.h"
#include "support/text.h"

namespace QMT {

namespace {

using Bytes = std::vector<unsigned char>;
using scaling::Kernels;
using scaling::Level;

struct Call {
    unsigned int width, height, pixel, factor, outWidth, outHeight;
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

// Memory without room: beside it a sanitizer sees each access.
std::unique_ptr<unsigned char[]> Exact(Bytes const& content, std::size_t size) {
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[size]);
    std::copy_n(content.begin(), size, bytes.get());
    return bytes;
}

// Byte by byte what the functions do, noting how much of both pictures that takes.
struct Reference {
    Bytes const& source;
    Bytes output;
    std::size_t sourceSize = 0, outputSize = 0;

    int Read(std::size_t at) {
        sourceSize = std::max(sourceSize, at + 1);
        return source.at(at);
    }

    void Write(std::size_t at, int value) {
        outputSize = std::max(outputSize, at + 1);
        output.at(at) = static_cast<unsigned char>(value);
    }

    static std::array<int, 3> Converted(std::array<int, 3> const& c, RGBConversionType conversion) {
        if (conversion == RGBPlain)
            return c;
        if (conversion == RGBToYUV)
            return {((66 * c[2] + 129 * c[1] + 25 * c[0] + 128) >> 8) + 16,
                    ((112 * c[0] - 74 * c[1] - 38 * c[2] + 128) >> 8) + 128,
                    ((112 * c[2] - 94 * c[1] - 18 * c[0] + 128) >> 8) + 128};
        auto const limited = [&](int u, int v) {
            return std::clamp((298 * (c[0] - 16) + u * (c[1] - 128) + v * (c[2] - 128) + 128) >> 8, 0, 255);
        };
        return {limited(516, 0), limited(-100, -208), limited(0, 409)};
    }

    void Downsize(Call const& c) {
        std::size_t const pixelStep = c.conversion == YUVToRGB ? 1 : c.pixel == 4 ? 4 : 3;
        std::size_t const planeStep = c.conversion == YUVToRGB ? std::size_t{c.width} * c.height : 1;
        std::size_t const rowStep = c.rowLength ? c.rowLength : 3 * c.outWidth;
        for (std::size_t y = 0; y < std::min(c.height / c.factor, c.outHeight); ++y)
            for (std::size_t x = 0; x < std::min(c.width / c.factor, c.outWidth); ++x) {
                std::array<int, 3> values{};
                for (std::size_t i = 0; i < c.factor * c.factor; ++i)
                    for (std::size_t plane = 0; plane < 3; ++plane)
                        values[plane] += Read(plane * planeStep + (x * c.factor + i % c.factor) * pixelStep +
                                              (y * c.factor + i / c.factor) * c.width * c.pixel);
                for (int& value : values)
                    value /= static_cast<int>(c.factor * c.factor);
                values = Converted(values, c.conversion);
                for (std::size_t plane = 0; plane < 3; ++plane)
                    Write(c.conversion == RGBToYUV ? plane * c.outWidth * c.outHeight + y * (rowStep / 3) + x
                                                   : y * rowStep + 3 * x + plane,
                          values[plane]);
            }
    }

    void DoubleUp(std::size_t width, std::size_t height, RGBConversionType conversion) {
        std::size_t const pixelStep = conversion == YUVToRGB ? 1 : 3;
        std::size_t const planeStep = conversion == YUVToRGB ? width * height : 1;
        for (std::size_t i = 0; i < width * height * 12; ++i) {
            std::size_t const from = (i / (12 * width) * width + i % (6 * width) / 6) * pixelStep;
            Write(i, Converted({Read(from), Read(from + planeStep), Read(from + 2 * planeStep)},
                               conversion)[i % 3]);
        }
    }
};

// Every byte that a call writes, or leaves, by every loop that this processor has.
void CheckDownsize(Call const& c, Bytes const& content, Bytes const& before) {
    Reference reference{content, before};
    reference.Downsize(c);
    for (Kernels const* const kernels : AllKernels()) {
        auto const source = Exact(content, reference.sourceSize);
        auto const output = Exact(before, reference.outputSize);
        scaling::Downsize(*kernels, source.get(), c.width, c.height, c.pixel, c.factor, output.get(),
                          c.outWidth, c.outHeight, c.conversion, c.rowLength);
        ASSERT_TRUE(std::equal(output.get(), output.get() + reference.outputSize, reference.output.begin()))
            << kernels->name << ", factor " << c.factor << ", " << c.width << " x " << c.height << " x "
            << c.pixel << ", conversion " << c.conversion << ", row length " << c.rowLength;
    }
}

Bytes RandomBytes(std::mt19937& random, std::size_t size) {
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random() >> 8); });
    return bytes;
}

TEST(RgbScalingTest, EveryShrunkByteIsAsReckoned) {
    std::mt19937 random = SeededGenerator();
    Bytes const content = RandomBytes(random, 1 << 20);
    Bytes const before = RandomBytes(random, 1 << 16);
    auto const upTo = [&](unsigned int bound) { return static_cast<unsigned int>(random() % (bound + 1)); };
    for (unsigned int round = 0; round < 15 * 3 * 5 * 2; ++round) {
        unsigned int const factor = 1 + round % 15;
        unsigned int const outWidth = upTo(120);
        CheckDownsize({upTo(110) * factor + upTo(factor), (1 + upTo(2)) * factor + upTo(factor),
                       std::array{3U, 4U, 1U, 0U, 5U}[round / 45 % 5], factor, outWidth, 1 + upTo(3),
                       static_cast<RGBConversionType>(round / 15 % 3), upTo(1) * (3 * outWidth + upTo(40))},
                      content, before);
    }
}

TEST(RgbScalingTest, EveryDoubledByteIsAsReckoned) {
    std::mt19937 random = SeededGenerator();
    Bytes const content = RandomBytes(random, 1 << 15);
    for (unsigned int round = 0; round < 60; ++round) {
        auto const width = static_cast<unsigned int>(random() % 70);
        auto const height = static_cast<unsigned int>(random() % 4);
        RGBConversionType const conversion = round % 2 == 0 ? RGBPlain : YUVToRGB;
        Reference reference{content, Bytes(12 * width * height)};
        reference.DoubleUp(width, height, conversion);
        for (Kernels const* const kernels : AllKernels()) {
            auto const source = Exact(content, reference.sourceSize);
            auto const output = Exact(content, round % 17 + reference.outputSize);
            unsigned char* const first = output.get() + round % 17;
            scaling::DoubleUp(*kernels, source.get(), width, height, first, conversion);
            ASSERT_TRUE(std::equal(reference.output.begin(), reference.output.end(), first))
                << kernels->name << ' ' << width << " x " << height << ", conversion " << conversion;
        }
    }
}

// Every pair of R and B, or of Y and V, with some values between them.
TEST(RgbScalingTest, EveryColourIsConvertedAsReckoned) {
    for (RGBConversionType const conversion : {RGBToYUV, YUVToRGB})
        for (std::size_t middle = 0; middle <= 255; middle += 15) {
            Bytes colours(3 << 16);
            for (std::size_t i = 0; i < colours.size(); ++i) {
                std::size_t const pixel = conversion == RGBToYUV ? i / 3 : i & 0xFFFF;
                std::size_t const channel = conversion == RGBToYUV ? i % 3 : i >> 16;
                colours[i] = static_cast<unsigned char>(std::array{pixel >> 8, middle, pixel & 255}[channel]);
            }
            CheckDownsize({256, 256, conversion == RGBToYUV ? 3U : 1U, 1, 256, 256, conversion, 0}, colours,
                          colours);
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
        Bytes source, expected; // where nothing is written, 7 stays
    };

    Bytes steps(75);
    std::generate(steps.begin(), steps.end(),
                  [next = 0]() mutable { return static_cast<unsigned char>(next++); });
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
        DownsizeRGB(source.data(), c.width, c.height, c.pixel, c.factor, output.data(), c.outWidth,
                    c.outHeight, c.conversion, c.rowLength);
        EXPECT_EQ(output, expected) << "factor " << c.factor << ", conversion " << c.conversion;
    }
    Bytes rows(steps.begin() + 1, steps.begin() + 13);
    DoubleUpRGB(steps.data(), 1, 1, rows.data(), unknown);
    EXPECT_EQ(rows[6], 7);
    DoubleUpRGB(steps.data(), 1, 1, rows.data(), RGBToYUV);
    EXPECT_EQ(rows, (Bytes{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}));
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
