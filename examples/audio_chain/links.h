// The links of the chain.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "audio_block.h"
#include "band_filter.h"
#include "level_meter.h"
#include "qmt/chain/chain_links.h"

namespace Audio {

// Where blocks enter. For the one thread that writes.
class Source : public QMT::ExternalPushLink {
public:
    // Tells the next link once more that there is something to do. For a writer that has found the ring full:
    // a push that found a ring full further on is used up, and this one takes its place.
    void PushAgain() { following->PushProcess(); }

private:
    void Process() override {}
};

// Where blocks leave. For the one thread that reads.
class Sink : public QMT::ExternalPullLink {
    void Process() override {}
};

// What the trace of a run calls the stages.
enum StageNumber { ofGain = 1, ofLow, ofMiddle, ofHigh, ofBands, ofMeter };

// A stage that makes one block out of one. A derived class supplies `Turn`.
//
// A block for which there is no room stays where it is, so that nothing is lost, and waits for another push.
class BlockStage : public QMT::InternalPushLink {
public:
    explicit BlockStage(StageNumber stageNumber) : number(stageNumber) {}

    // How often a block found this stage's ring full. For a time when the chain does not run.
    std::uint64_t FullRings() const { return fullRings; }

private:
    void Process() final;

    // Fills the block `*to`, which is of the same size, from `*from`, or exchanges the two; a block that is
    // shared by several stages must be left as it is.
    virtual void Turn(unsigned char** from, unsigned char** to) = 0;

    StageNumber number;
    bool isFirst = true;
    std::uint64_t fullRings = 0;
};

// Multiplies everything by a factor.
class GainStage : public BlockStage {
public:
    explicit GainStage(double gainFactor) : BlockStage(ofGain), factor(gainFactor) {}

private:
    void Turn(unsigned char** from, unsigned char** to) override;

    double factor;
};

// Lets one band through; a party of a `BandArray`.
class BandStage : public BlockStage {
public:
    BandStage(StageNumber stageNumber, BandFilter bandFilter)
        : BlockStage(stageNumber), filter(std::move(bandFilter)) {}

private:
    void Turn(unsigned char** from, unsigned char** to) override;

    BandFilter filter;
};

// Measures what passes, and hands the blocks themselves on without copying them.
class MeterStage : public BlockStage {
public:
    MeterStage() : BlockStage(ofMeter) {}

    // For a time when the chain does not run.
    LevelMeter const& Level() const { return meter; }

private:
    void Turn(unsigned char** from, unsigned char** to) override;

    LevelMeter meter;
};

constexpr std::size_t bandCount = 3;

// Runs the bands side by side and mixes what they make, each multiplied by its factor.
//
// The bands must outlive the array. Join the array to its predecessor, then call `AddBands`.
class BandArray : public QMT::ParallelPushLinkArray {
public:
    BandArray(std::array<BandStage*, bandCount> bandStages, std::array<double, bandCount> bandFactors)
        : bands(bandStages), factors(bandFactors) {}

    void AddBands();

    // As for `BlockStage`.
    std::uint64_t FullRings() const { return fullRings; }

private:
    void Process() override;
    void AfterParallelLinks() override;
    void CountFullRing();

    void BeforeEndWrite() override {}

    std::array<BandStage*, bandCount> bands;
    std::array<double, bandCount> factors;
    std::uint64_t fullRings = 0;
};

} // namespace Audio
