// The command line.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace Thumbnail {

enum class Job { Shrink, Double, YuvAndBack };

// What the user wants.
struct Options {
    std::filesystem::path input;
    std::filesystem::path output;
    Job job = Job::Shrink;
    unsigned int factor = 2; // for Shrink, from 1 to 15
    bool help = false;       // nothing else counts then
};

// A command line that cannot be understood. The text quotes the argument.
class BadUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads the words behind the program's name. Throws BadUsage.
Options ParseOptions(std::vector<std::string> const& words);

// How to call the program, some lines with a line break at the end.
char const* UsageText();

} // namespace Thumbnail
