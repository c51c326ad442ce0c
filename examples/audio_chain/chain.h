// The whole chain of the program, built, run and stopped.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "audio_block.h"
#include "level_meter.h"
#include "links.h"
#include "qmt/chain/link_counts.h"
#include "qmt/chain/thread_pool.h"
#include "qmt/general/events.h"

namespace Audio {

// Factors are amplitudes, edges are in Hz.
struct ChainSettings {
    std::size_t channels;
    int sampleRate;
    std::size_t blockFrames;
    std::size_t buffers; // blocks that a ring holds
    double gain;
    std::array<double, bandCount> bandGains; // low, middle, high
    double lowEdge;
    double highEdge;
};

// How often a block found the ring in front of it full, by link.
struct FullRings {
    std::uint64_t gain;
    std::uint64_t bands;
    std::uint64_t meter;
};

// Source, input gain, three bands side by side, meter, sink.
//
// One thread writes: it asks for a block, fills it, gives its shape, and ends the write. When it gets none it
// waits for the reader to make room, and goes on asking until the reader has the last block: each time the
// chain is pushed again. One thread reads: it waits for `BlockReady`, resets it once, and reads one block.
// Blocks come out in order, none is lost. The threads of the stages start with the first block.
//
//     AudioChain chain(settings);
//     if (std::optional<AudioBlock> const block = chain.BeginWrite()) { Fill(*block); chain.EndWrite(); }
//
// `Stop`, or the destructor, ends the work of the stages when both threads have left off. There may be one
// chain at a time, since its pool serves all links.
class AudioChain {
public:
    // Allocates all blocks. Throws std::bad_alloc.
    explicit AudioChain(ChainSettings const& settings);
    ~AudioChain();
    AudioChain(AudioChain const&) = delete;
    AudioChain& operator=(AudioChain const&) = delete;

    // Samples that a block takes.
    std::size_t BlockSamples() const { return blockSamples; }

    // For the writer; without room the result is nothing, and the chain is pushed again. Neither of the two
    // waits; the first `EndWrite` allocates.
    std::optional<AudioBlock> BeginWrite();

    void EndWrite() { source.EndWrite(); }

    // For the writer that has nothing more to write.
    void PushAgain() { source.PushAgain(); }

    // Counts the blocks that have come out.
    QMT::CountingSemaphore& BlockReady() { return blockReady; }

    // For the reader; nothing if no block has come out. Neither of the two waits or allocates.
    std::optional<AudioBlock> BeginRead();

    void EndRead() { sink.EndRead(); }

    // Stops all stages and waits until they have; blocks under way are lost. May be called again.
    void Stop();

    // What has come out, and where blocks had to wait. After `Stop`.
    LevelMeter const& OutputLevel() const { return meter.Level(); }

    FullRings CountFullRings() const;

    // What each link has done so far. At any time.
    std::vector<QMT::LinkCounts> CountLinks() { return QMT::CountChain(sink); }

private:
    void ConfigureRings(int slots);
    void Join();
    void NameLinks();

    std::size_t blockSamples;
    QMT::CountingSemaphore blockReady{"block ready", 0};
    QMT::ThreadPool pool{"audio", 2 + bandCount};
    Source source;
    GainStage gain;
    BandStage low;
    BandStage middle;
    BandStage high;
    BandArray bands;
    MeterStage meter;
    Sink sink;
};

} // namespace Audio
