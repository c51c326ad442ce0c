#include "recording_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "failure.h"

namespace Audio {

namespace {

void RequireRegularFile(std::filesystem::path const& path) {
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        throw Failure("cannot read " + Quoted(path) + ": " + error.message());
    if (!std::filesystem::is_regular_file(status))
        throw Failure("cannot read " + Quoted(path) + ": it is no regular file");
}

} // namespace

RecordingReader::RecordingReader(std::filesystem::path const& path) : name(path) {
    RequireRegularFile(path);
    SF_INFO info{};
    file.reset(sf_open(path.string().c_str(), SFM_READ, &info));
    if (!file)
        throw Failure(Quoted(path) + " is no recording that can be read: " + sf_strerror(nullptr));
    format = {info.samplerate, info.channels, info.format};
    frames = static_cast<std::uint64_t>(info.frames);
    if (EncodingOf(format) == Encoding::Other)
        throw Failure(Quoted(path) + " holds neither integer nor floating point samples");
}

std::size_t RecordingReader::Read(std::span<double> samples) {
    std::size_t const count =
        EncodingOf(format) == Encoding::Integer ? ReadIntegers(samples) : ReadFloating(samples);
    framesRead += count / static_cast<std::size_t>(format.channels);
    if (sf_error(file.get()) != SF_ERR_NO_ERROR)
        throw Failure("cannot read " + Quoted(name) + ": " + sf_strerror(file.get()));
    if (count < samples.size() && framesRead < frames)
        throw Failure(Quoted(name) + " ends after " + std::to_string(framesRead) + " of " +
                      std::to_string(frames) + " frames");
    return count;
}

// The library gives an integer of any width in the upper bits of 32.
std::size_t RecordingReader::ReadIntegers(std::span<double> samples) {
    constexpr double fullScale = 2147483648.0;
    integers.resize(std::max(integers.size(), samples.size()));
    auto const count = static_cast<std::size_t>(
        sf_read_int(file.get(), integers.data(), static_cast<sf_count_t>(samples.size())));
    std::transform(integers.begin(), integers.begin() + static_cast<std::ptrdiff_t>(count), samples.begin(),
                   [](int sample) { return sample / fullScale; });
    return count;
}

std::size_t RecordingReader::ReadFloating(std::span<double> samples) {
    auto const count = static_cast<std::size_t>(
        sf_read_double(file.get(), samples.data(), static_cast<sf_count_t>(samples.size())));
    for (double& sample : samples.first(count)) {
        if (!(std::abs(sample) <= std::numeric_limits<float>::max())) {
            sample = 0;
            ++unusable;
        }
    }
    return count;
}

} // namespace Audio
