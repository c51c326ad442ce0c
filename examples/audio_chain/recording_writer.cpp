#include "recording_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>

#include "failure.h"

namespace Audio {

namespace {

OutputFile& ToFile(void* user) {
    return *static_cast<OutputFile*>(user);
}

sf_count_t GetSize(void* user) {
    return ToFile(user).Size();
}

sf_count_t Seek(sf_count_t offset, int origin, void* user) {
    OutputFile& file = ToFile(user);
    sf_count_t const base = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? file.Position() : file.Size();
    file.Seek(base + offset);
    return file.Position();
}

sf_count_t ReadNothing(void*, sf_count_t, void*) {
    return 0;
}

sf_count_t Write(void const* bytes, sf_count_t count, void* user) {
    return ToFile(user).Write(bytes, count);
}

sf_count_t GetPosition(void* user) {
    return ToFile(user).Position();
}

SNDFILE* OpenForWriting(OutputFile& file, RecordingFormat const& format) {
    SF_VIRTUAL_IO access{&GetSize, &Seek, &ReadNothing, &Write, &GetPosition};
    SF_INFO info{};
    info.samplerate = format.sampleRate;
    info.channels = format.channels;
    info.format = format.code;
    return sf_open_virtual(&access, SFM_WRITE, &info, &file);
}

} // namespace

RecordingWriter::RecordingWriter(OutputFile& file, RecordingFormat const& recordingFormat)
    : output(file), format(recordingFormat), sound(OpenForWriting(file, format)) {
    if (sound == nullptr)
        throw Failure("cannot write a recording of the input's format: " + std::string(sf_strerror(nullptr)));
}

RecordingWriter::~RecordingWriter() {
    if (sound != nullptr)
        sf_close(sound);
}

void RecordingWriter::Write(std::span<double const> samples) {
    std::size_t const written =
        EncodingOf(format) == Encoding::Integer ? WriteIntegers(samples) : WriteFloating(samples);
    frames += written / static_cast<std::size_t>(format.channels);
    if (written == samples.size())
        return;
    std::string const reason = sf_strerror(sound);
    output.Close(); // throws with the system's reason, if there is one
    throw Failure("cannot write the result: " + reason);
}

void RecordingWriter::Close() {
    int const error = sf_close(std::exchange(sound, nullptr));
    if (error == SF_ERR_NO_ERROR)
        return;
    output.Close();
    throw Failure("cannot write the result: " + std::string(sf_error_number(error)));
}

double RecordingWriter::Limit(double sample, double lowest, double highest) {
    double const limited = std::clamp(sample, lowest, highest);
    if (limited != sample)
        ++clipped;
    return limited;
}

// The library takes an integer of any width in the upper bits of 32.
std::size_t RecordingWriter::WriteIntegers(std::span<double const> samples) {
    int const bits = BitsOf(format);
    double const fullScale = std::ldexp(1.0, bits - 1);
    int const lowestBit = 1 << (32 - bits);
    integers.resize(samples.size());
    std::ranges::transform(samples, integers.begin(), [=, this](double sample) {
        return static_cast<int>(Limit(std::nearbyint(sample * fullScale), -fullScale, fullScale - 1)) *
               lowestBit;
    });
    return static_cast<std::size_t>(
        sf_write_int(sound, integers.data(), static_cast<sf_count_t>(integers.size())));
}

std::size_t RecordingWriter::WriteFloating(std::span<double const> samples) {
    constexpr double highest = std::numeric_limits<float>::max();
    numbers.resize(samples.size());
    std::ranges::transform(samples, numbers.begin(),
                           [this](double sample) { return Limit(sample, -highest, highest); });
    return static_cast<std::size_t>(
        sf_write_double(sound, numbers.data(), static_cast<sf_count_t>(numbers.size())));
}

} // namespace Audio
