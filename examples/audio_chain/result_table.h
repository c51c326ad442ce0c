// What the program tells at the end of a run.
#pragma once

#include <cstdint>
#include <optional>

#include "transfer.h"

namespace Audio {

// How closely a result that is to equal its input must do so: one millionth of full scale, -120 dBFS.
constexpr double allowedDifference = 1e-6;

struct RunResult {
    TransferFigures figures;
    int sampleRate;
    std::uint64_t clippedSamples;
    std::uint64_t unusableSamples;
    std::optional<double> largestDifference; // only if the result was to equal the input

    bool IsAsExpected() const { return !largestDifference || *largestDifference <= allowedDifference; }
};

// Writes the table to standard output.
void PrintTable(RunResult const& result);

} // namespace Audio
