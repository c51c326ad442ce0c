// Chains whose stages do light work on blocks of samples, with both ends on one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "qmt/chain/chain_links.h"
#include "qmt/chain/thread_pool.h"
#include "sample_block.h"

namespace bench {

inline SampleBlock& AsSamples(unsigned char* block) {
    return *reinterpret_cast<SampleBlock*>(block);
}

inline void SetUpRing(QMT::ChainLink& link, std::size_t blocks) {
    link.GetBuffers().SetProperties(static_cast<int>(blocks) + 1, sizeof(SampleBlock));
}

// Writes the blocks 0, 1, 2...
class Source final : public QMT::ExternalPushLink {
public:
    bool Write() {
        unsigned char** const slot = BeginWrite();
        if (slot == nullptr)
            return false;
        WriteSamples(AsSamples(*slot), written++);
        EndWrite();
        return true;
    }

    std::uint64_t Written() const { return written; }

private:
    void Process() override {}

    std::uint64_t written = 0;
};

// Expects the blocks 0, 1, 2... as they are behind so many stages.
class Sink final : public QMT::ExternalPullLink {
public:
    explicit Sink(int stageCount) : stages(stageCount) {}

    bool Read() {
        unsigned char** const slot = BeginRead();
        if (slot == nullptr)
            return false;
        faultless = faultless && HoldsSamples(AsSamples(*slot), read++, stages);
        EndRead();
        return true;
    }

    std::uint64_t ReadSoFar() const { return read; }

    // True while every block was the one expected.
    bool Faultless() const { return faultless; }

private:
    void Process() override {}

    int stages;
    std::uint64_t read = 0;
    bool faultless = true;
};

class Stage final : public QMT::InternalPushLink {
private:
    void Process() override {
        QMT::RotatingFixedBuffers& input = GetPreceeding()->GetBuffers();
        unsigned char** const from = input.BeginRead();
        unsigned char** const to = GetBuffers().BeginWrite();
        if (from == nullptr || to == nullptr)
            return;
        work(AsSamples(*from), AsSamples(*to));
        input.EndRead(); // first, or the ring holds one block more than there are in flight
        GetBuffers().EndWrite();
    }

    MultiplyAdd work;
};

// The two ends of a chain. No more than `inFlight` blocks are between them, so no ring of that size ever
// fills.
class ChainEnds {
public:
    ChainEnds(int stageCount, std::size_t inFlight) : sink(stageCount), limit(inFlight) {
        SetUpRing(source, limit);
    }

    Source& First() { return source; }

    Sink& Last() { return sink; }

    // Sends `blocks` blocks through the chain and returns when all of them have come out.
    void Pass(std::uint64_t blocks) {
        std::uint64_t const end = source.Written() + blocks;
        while (sink.ReadSoFar() < end) {
            bool const canWrite = source.Written() < end && source.Written() - sink.ReadSoFar() < limit;
            bool const wrote = canWrite && source.Write();
            if (!sink.Read() && !wrote)
                std::this_thread::yield();
        }
    }

    bool Faultless() const { return sink.Faultless(); }

private:
    Source source;
    Sink sink;
    std::size_t limit;
};

// A source, a row of stages, and a sink.
class SampleChain {
public:
    SampleChain(int stageCount, std::size_t inFlight, bool coupled)
        : pool("bench", static_cast<std::size_t>(stageCount)), ends(stageCount, inFlight) {
        QMT::ChainLink::SetThreadPoolToUse(&pool);
        QMT::ChainLink* last = &ends.First();
        for (int i = 0; i < stageCount; ++i) {
            stages.push_back(std::make_unique<Stage>());
            if (coupled)
                stages.back()->CoupleToPredecessor();
            SetUpRing(*stages.back(), inFlight);
            last->LinkToFollowing(stages.back().get());
            last = stages.back().get();
        }
        ends.Last().SetPreceedingLink(last);
    }

    ~SampleChain() { ends.First().StopLinkedProcessing(); }

    SampleChain(SampleChain const&) = delete;
    SampleChain& operator=(SampleChain const&) = delete;

    ChainEnds& Ends() { return ends; }

private:
    QMT::ThreadPool pool;
    ChainEnds ends;
    std::vector<std::unique_ptr<Stage>> stages;
};

} // namespace bench
