// The filters that split sound into bands which add up to it again.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace Audio {

// A low pass of first order, 6 dB an octave, for interleaved channels.
//
// The edge in Hz is where the level has fallen by 3 dB; beyond 45 per cent of the sample rate it counts as
// that. Filters with the same edge that are given the same samples make the same numbers, bit for bit.
// Nothing but the constructor allocates.
class LowPass {
public:
    LowPass(double edge, int sampleRate, std::size_t channels);

    // Puts the low part of `input` into `output`, which is of the same size.
    void Put(std::span<double const> input, std::span<double> output);

    // Takes the low part of `input` away from `output`, which is of the same size.
    void Subtract(std::span<double const> input, std::span<double> output);

private:
    template <typename Take>
    void Run(std::span<double const> input, Take take);

    double factor;
    std::vector<double> states; // one for each channel
};

// One band: what lies below its upper edge less what lies below its lower edge.
//
// A band without an upper edge reaches to the top, one without a lower edge to the bottom. Bands that share
// their edges therefore add up to the input, but for the rounding of a few additions.
class BandFilter {
public:
    BandFilter(std::optional<LowPass> belowUpperEdge, std::optional<LowPass> belowLowerEdge);

    // Puts the band's part of `input` into `output`, which is of the same size. Allocates nothing.
    void Apply(std::span<double const> input, std::span<double> output);

private:
    std::optional<LowPass> upper;
    std::optional<LowPass> lower;
};

} // namespace Audio
