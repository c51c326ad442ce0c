#include "helpers/rgb_scaling_portable.h"

#include <algorithm>
#include <cstring>

namespace QMT::scaling::portable {

namespace {

unsigned char Limited(int value) {
    return static_cast<unsigned char>(std::clamp(value, 0, 255));
}

unsigned char AverageOfChannel(BlockRow const& block, unsigned char const* from) {
    unsigned int sum = 0;
    for (unsigned int row = 0; row < block.factor; ++row, from += block.rowStep)
        for (unsigned int column = 0; column < block.factor; ++column)
            sum += from[column * block.pixelStep];
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): a block has pixels
    return static_cast<unsigned char>(sum / (block.factor * block.factor));
}

void AverageAllPixels(BlockRow const& block, unsigned char* packed) {
    AveragePixels(block, 0, packed);
}

void AverageWholePlane(BlockRow const& block, unsigned char* averages) {
    AveragePlane(block, 0, averages);
}

} // namespace

void AveragePixels(BlockRow const& block, std::size_t begin, unsigned char* packed) {
    unsigned char const* from = block.first + begin * block.BlockStep();
    for (std::size_t i = begin; i < block.count; ++i, from += block.BlockStep())
        for (std::size_t channel = 0; channel < 3; ++channel)
            packed[4 * i + channel] = AverageOfChannel(block, from + channel);
}

void AveragePlane(BlockRow const& block, std::size_t begin, unsigned char* averages) {
    for (std::size_t i = begin; i < block.count; ++i)
        averages[i] = AverageOfChannel(block, block.first + i * block.BlockStep());
}

void StorePixels(unsigned char const* packed, std::size_t count, unsigned char* to) {
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(to + 3 * i, packed + 4 * i, 3);
}

void ConvertToYuv(unsigned char const* packed, std::size_t count, OutputChannelRow const& to) {
    for (std::size_t i = 0; i < count; ++i) {
        int const b = packed[4 * i];
        int const g = packed[4 * i + 1];
        int const r = packed[4 * i + 2];
        to[0][i] = static_cast<unsigned char>(((66 * r + 129 * g + 25 * b + 128) >> 8) + 16);
        to[1][i] = static_cast<unsigned char>(((112 * b - 74 * g - 38 * r + 128) >> 8) + 128);
        to[2][i] = static_cast<unsigned char>(((112 * r - 94 * g - 18 * b + 128) >> 8) + 128);
    }
}

void ConvertToRgb(ChannelRow const& from, std::size_t count, unsigned char* to) {
    for (std::size_t i = 0; i < count; ++i, to += 3) {
        int const luma = 298 * (from[0][i] - 16) + 128;
        int const u = from[1][i] - 128;
        int const v = from[2][i] - 128;
        to[0] = Limited((luma + 516 * u) >> 8);
        to[1] = Limited((luma - 100 * u - 208 * v) >> 8);
        to[2] = Limited((luma + 409 * v) >> 8);
    }
}

void DoublePixels(unsigned char const* from, std::size_t count, unsigned char* to) {
    for (std::size_t i = 0; i < count; ++i, from += 3, to += 6) {
        std::memcpy(to, from, 3);
        std::memcpy(to + 3, from, 3);
    }
}

void DoubleYuv(ChannelRow const& from, std::size_t count, unsigned char* to) {
    for (std::size_t i = 0; i < count; ++i, to += 6) {
        ConvertToRgb({from[0] + i, from[1] + i, from[2] + i}, 1, to);
        std::memcpy(to + 3, to, 3);
    }
}

constexpr Kernels kernels{.name = "portable",
                          .averagePixels = AverageAllPixels,
                          .averagePlane = AverageWholePlane,
                          .storePixels = StorePixels,
                          .convertToYuv = ConvertToYuv,
                          .convertToRgb = ConvertToRgb,
                          .doublePixels = DoublePixels,
                          .doubleYuv = DoubleYuv};

} // namespace QMT::scaling::portable
