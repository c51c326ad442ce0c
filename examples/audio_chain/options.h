// The command line.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Audio {

// What the user wants. Gains are in dB, edges in Hz.
struct Options {
    std::filesystem::path input;
    std::filesystem::path output;
    std::filesystem::path logDirectory;
    std::filesystem::path trace; // its files without their endings; empty for none
    double gain = 0;
    std::array<double, 3> bandGains{0, 0, 0}; // low, middle, high
    double lowEdge = 250;
    double highEdge = 4000;
    std::size_t blockFrames = 1024;
    std::size_t buffers = 8;
    bool help = false; // nothing else counts then

    // True if the output is to equal the input.
    bool IsFlat() const { return gain == 0 && bandGains == std::array<double, 3>{0, 0, 0}; }
};

// A command line that cannot be understood. The text quotes the argument.
class BadUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws BadUsage. What is not on the command line keeps its default; the log directory's is the place where
// the user's programs keep such things: $XDG_STATE_HOME, else ~/.local/state, else the temporary files.
Options ParseOptions(int argumentCount, char const* const* arguments);

// How to call the program, some lines with a line break at the end.
std::string UsageText();

} // namespace Audio
