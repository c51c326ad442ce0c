// What the program knows of a recording's form.
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Audio {

// The form of a recording, all of which the result keeps.
struct RecordingFormat {
    int sampleRate; // Hz
    int channels;
    int code; // container, encoding and byte order, as the sound file library numbers them

    bool operator==(RecordingFormat const&) const = default;
};

enum class Encoding {
    Integer, // of 8 to 32 bits
    Floating,
    Other // one that does not give back every sample as it was
};

inline Encoding EncodingOf(RecordingFormat const& format) {
    switch (format.code & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
        return Encoding::Integer;
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
        return Encoding::Floating;
    default:
        return Encoding::Other;
    }
}

// Bits in a sample of an integer encoding.
inline int BitsOf(RecordingFormat const& format) {
    switch (format.code & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
        return 32;
    default:
        return 8;
    }
}

} // namespace Audio
