// The blocks that the chain benchmarks pass, and the work that is done on each.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace bench {

using SampleBlock = std::array<float, 256>;

// The value of all samples of a block that has just been written, and of one that has passed `stages` stages.
// Small whole numbers, so that the arithmetic is exact.
inline float SampleOf(std::uint64_t number, int stages) {
    return static_cast<float>(number % 4096) + static_cast<float>(stages);
}

inline void WriteSamples(SampleBlock& block, std::uint64_t number) {
    block.fill(SampleOf(number, 0));
}

// Looks at the first and the last sample only, so that the check does not weigh more than a stage.
inline bool HoldsSamples(SampleBlock const& block, std::uint64_t number, int stages) {
    float const expected = SampleOf(number, stages);
    return block.front() == expected && block.back() == expected;
}

// The light work of a stage. The factors are members so that the compiler does not know them.
struct MultiplyAdd {
    float factor = 1;
    float summand = 1;

    void operator()(SampleBlock const& from, SampleBlock& to) const {
        std::ranges::transform(from, to.begin(), [this](float sample) { return sample * factor + summand; });
    }
};

// Brings the results of three such stages together; the sum is again what one stage gives.
inline void Combine(SampleBlock const& first, SampleBlock const& second, SampleBlock const& third,
                    SampleBlock& sum) {
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] = first[i] + second[i] - third[i];
}

} // namespace bench
