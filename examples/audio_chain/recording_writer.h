// Writes recordings.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <span>
#include <vector>

#include "output_file.h"
#include "recording_format.h"

namespace Audio {

// Writes samples, of which 1.0 is full scale, into a file that the caller has made and closes afterwards.
//
// A sample is rounded to the nearest one that the format holds, so samples that came from the same format go
// back exactly. One beyond full scale is clipped to it and counted; floating point has no full scale, and is
// clipped only where 32-bit floating point ends.
//
// For one thread at a time. A Failure is thrown when the format cannot be written; a failed write throws one
// too, at once or at the end in `Close` of the file.
//
//     RecordingWriter writer(file, format);
//     writer.Write(samples);
//     writer.Close();
//     file.Close();
class RecordingWriter {
public:
    // `file` must outlive the writer.
    RecordingWriter(OutputFile& file, RecordingFormat const& recordingFormat);
    ~RecordingWriter();
    RecordingWriter(RecordingWriter const&) = delete;
    RecordingWriter& operator=(RecordingWriter const&) = delete;

    // `samples` is a whole number of frames.
    void Write(std::span<double const> samples);

    // Completes the recording. Nothing is written afterwards.
    void Close();

    std::uint64_t Frames() const { return frames; }

    std::uint64_t ClippedSamples() const { return clipped; }

private:
    double Limit(double sample, double lowest, double highest);
    std::size_t WriteIntegers(std::span<double const> samples);
    std::size_t WriteFloating(std::span<double const> samples);

    OutputFile& output;
    RecordingFormat format;
    SNDFILE* sound = nullptr;
    std::uint64_t frames = 0;
    std::uint64_t clipped = 0;
    std::vector<int> integers;
    std::vector<double> numbers;
};

} // namespace Audio
