// How far two recordings are apart.
#pragma once

#include <filesystem>

namespace Audio {

// The largest difference between samples of two recordings in the same place, 1.0 being full scale; infinite
// if their format or length differs. Samples that are no numbers count as 0, as everywhere in the program.
//
// Throws a Failure if one of them cannot be read, and Interrupted when the user asks for the end.
double LargestDifference(std::filesystem::path const& one, std::filesystem::path const& other);

} // namespace Audio
