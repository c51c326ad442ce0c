#include "comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "recording_reader.h"
#include "system.h"

namespace Audio {

double LargestDifference(std::filesystem::path const& one, std::filesystem::path const& other) {
    RecordingReader oneReader(one);
    RecordingReader otherReader(other);
    if (oneReader.Format() != otherReader.Format() || oneReader.Frames() != otherReader.Frames())
        return std::numeric_limits<double>::infinity();
    constexpr std::size_t framesAtOnce = 4096;
    std::vector<double> oneBlock(framesAtOnce * static_cast<std::size_t>(oneReader.Format().channels));
    std::vector<double> otherBlock(oneBlock.size());
    double largest = 0;
    while (std::size_t const count = oneReader.Read(oneBlock)) {
        ThrowIfInterrupted();
        if (otherReader.Read(otherBlock) != count)
            return std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < count; ++i)
            largest = std::max(largest, std::abs(oneBlock[i] - otherBlock[i]));
    }
    return largest;
}

} // namespace Audio
