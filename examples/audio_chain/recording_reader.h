// Reads recordings.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "recording_format.h"

namespace Audio {

// A recording that is read from its beginning to its end.
//
// Samples come as numbers of which 1.0 is full scale; integer samples of up to 32 bits come exactly. A sample
// that is infinite, no number, or beyond what 32-bit floating point holds comes as 0 and is counted: filters
// would never recover from it.
//
// The caller asks for samples until there are none. For one thread at a time. What cannot be read throws
// a Failure that quotes the file's name.
//
//     RecordingReader reader(path);
//     while (std::size_t const count = reader.Read(block)) Use(block.first(count));
class RecordingReader {
public:
    explicit RecordingReader(std::filesystem::path const& path);

    RecordingFormat const& Format() const { return format; }

    // As the recording itself tells.
    std::uint64_t Frames() const { return frames; }

    // Fills `samples`, a whole number of frames, and gives how many it put there. Fewer than asked for means
    // that the end has been reached; an end before `Frames()` is a failure.
    std::size_t Read(std::span<double> samples);

    std::uint64_t UnusableSamples() const { return unusable; }

private:
    struct Close {
        void operator()(SNDFILE* open) const { sf_close(open); }
    };

    std::size_t ReadIntegers(std::span<double> samples);
    std::size_t ReadFloating(std::span<double> samples);

    std::filesystem::path name;
    std::unique_ptr<SNDFILE, Close> file;
    RecordingFormat format{};
    std::uint64_t frames = 0;
    std::uint64_t framesRead = 0;
    std::uint64_t unusable = 0;
    std::vector<int> integers;
};

} // namespace Audio
