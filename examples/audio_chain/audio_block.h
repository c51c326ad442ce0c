// A block of a ring, seen as samples.
#pragma once

#include <cstddef>
#include <span>

namespace Audio {

// A view of the bytes of one block: how many samples it holds, whether it is the last of the recording, and
// the samples, channel by channel within each frame, 1.0 being full scale.
//
// The block must have `BytesFor` the samples that are put into it. Whoever fills a block calls `SetShape`
// first, since a ring's block is not initialised. The view owns nothing and is copied freely.
//
//     AudioBlock const block(*source.BeginWrite());
//     block.SetShape(count, isLast);
//     std::ranges::copy(sound, block.Samples().begin());
class AudioBlock {
public:
    static constexpr std::size_t BytesFor(std::size_t samples) {
        return sizeof(Header) + samples * sizeof(double);
    }

    explicit AudioBlock(unsigned char* block) : bytes(block) {}

    void SetShape(std::size_t samples, bool last) const { *ToHeader() = {samples, last}; }

    void SetShape(AudioBlock other) const { *ToHeader() = *other.ToHeader(); }

    bool IsLast() const { return ToHeader()->last; }

    std::span<double> Samples() const {
        return {reinterpret_cast<double*>(bytes + sizeof(Header)), ToHeader()->samples};
    }

private:
    struct alignas(double) Header {
        std::size_t samples;
        bool last;
    };

    Header* ToHeader() const { return reinterpret_cast<Header*>(bytes); }

    unsigned char* bytes;
};

} // namespace Audio
