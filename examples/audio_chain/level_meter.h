// Peak and RMS of a stream of samples.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace Audio {

// Decibels relative to full scale; minus infinity for 0.
inline double ToDbfs(double amplitude) {
    return 20 * std::log10(amplitude);
}

inline double FromDb(double decibels) {
    return std::pow(10.0, decibels / 20);
}

// Gathers the level over all channels. For one thread at a time; allocates nothing.
class LevelMeter {
public:
    void Add(std::span<double const> samples) {
        for (double const sample : samples) {
            peak = std::max(peak, std::abs(sample));
            sumOfSquares += sample * sample;
        }
        count += samples.size();
    }

    // Both are amplitudes, 0 if there were no samples.
    double Peak() const { return peak; }

    double Rms() const { return count == 0 ? 0 : std::sqrt(sumOfSquares / static_cast<double>(count)); }

private:
    double peak = 0;
    double sumOfSquares = 0;
    std::uint64_t count = 0;
};

} // namespace Audio
