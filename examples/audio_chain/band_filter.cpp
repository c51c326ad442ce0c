#include "band_filter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Audio {

LowPass::LowPass(double edge, int sampleRate, std::size_t channels) : states(channels, 0.0) {
    double const tangent = std::tan(std::numbers::pi * std::min(edge / sampleRate, 0.45));
    factor = tangent / (1 + tangent);
}

// In silence the state would fade into numbers so small that processors are slow with them.
template <typename Take>
void LowPass::Run(std::span<double const> input, Take take) {
    constexpr double tiny = 1e-30;
    for (std::size_t channel = 0; channel < states.size(); ++channel) {
        double state = states[channel];
        for (std::size_t i = channel; i < input.size(); i += states.size()) {
            double const step = (input[i] - state) * factor;
            double const low = state + step;
            state = low + step;
            take(i, low);
        }
        states[channel] = std::abs(state) < tiny ? 0 : state;
    }
}

void LowPass::Put(std::span<double const> input, std::span<double> output) {
    Run(input, [output](std::size_t i, double low) { output[i] = low; });
}

void LowPass::Subtract(std::span<double const> input, std::span<double> output) {
    Run(input, [output](std::size_t i, double low) { output[i] -= low; });
}

BandFilter::BandFilter(std::optional<LowPass> belowUpperEdge, std::optional<LowPass> belowLowerEdge)
    : upper(std::move(belowUpperEdge)), lower(std::move(belowLowerEdge)) {}

void BandFilter::Apply(std::span<double const> input, std::span<double> output) {
    if (upper)
        upper->Put(input, output);
    else
        std::ranges::copy(input, output.begin());
    if (lower)
        lower->Subtract(input, output);
}

} // namespace Audio
