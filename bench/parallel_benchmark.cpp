// How many blocks a second pass through a stage of three parallel links, beside a oneTBB pipeline that forks
// in three for each block.
#include <benchmark/benchmark.h>
#include <oneapi/tbb/parallel_invoke.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "sample_block.h"
#include "sample_chain.h"
#include "sample_pipeline.h"

namespace {

using bench::SampleBlock;

constexpr std::size_t partyCount = 3;
constexpr std::size_t inFlight = 32;
constexpr std::uint64_t blocksPerRun = 1'024;

// How often a party does the work of a stage on each block.
void Work(SampleBlock const& from, SampleBlock& to, std::int64_t weight) {
    bench::MultiplyAdd const work;
    for (std::int64_t i = 0; i < weight; ++i) {
        work(from, to);
        benchmark::ClobberMemory();
    }
}

class Party final : public QMT::InternalPushLink {
public:
    std::int64_t weight = 1;

private:
    void Process() override {
        QMT::RotatingFixedBuffers& input = GetPreceeding()->GetBuffers();
        unsigned char** const from = input.BeginRead();
        unsigned char** const to = GetBuffers().BeginWrite();
        if (from == nullptr || to == nullptr)
            return;
        Work(bench::AsSamples(*from), bench::AsSamples(*to), weight);
        input.EndRead();
        GetBuffers().EndWrite();
    }
};

using Parties = std::array<Party, partyCount>;

// Adds up what its parties give.
class Array final : public QMT::ParallelPushLinkArray {
public:
    explicit Array(Parties& itsParties) : parties(itsParties) {}

private:
    void AfterParallelLinks() override {
        bench::Combine(ResultOf(0), ResultOf(1), ResultOf(2), bench::AsSamples(*GetBuffers().BeginWrite()));
        for (Party& party : parties)
            party.GetBuffers().EndRead();
    }

    void BeforeEndWrite() override {}

    SampleBlock& ResultOf(std::size_t place) {
        return bench::AsSamples(*parties[place].GetBuffers().BeginRead());
    }

    Parties& parties;
};

class ParallelChain {
public:
    explicit ParallelChain(std::int64_t weight) {
        QMT::ChainLink::SetThreadPoolToUse(&pool);
        bench::SetUpRing(array, inFlight);
        ends.First().LinkToFollowing(&array);
        ends.Last().SetPreceedingLink(&array);
        for (Party& party : parties) {
            party.weight = weight;
            bench::SetUpRing(party, inFlight);
            array.AddParallelLink(&party);
        }
    }

    ~ParallelChain() {
        ends.First().StopLinkedProcessing();
        for (Party& party : parties)
            party.StopLinkedProcessing();
    }

    ParallelChain(ParallelChain const&) = delete;
    ParallelChain& operator=(ParallelChain const&) = delete;

    bench::ChainEnds& Ends() { return ends; }

private:
    QMT::ThreadPool pool{"bench", partyCount + 1};
    bench::ChainEnds ends{1, inFlight};
    Parties parties;
    Array array{parties};
};

template <std::int64_t weight>
class Fork {
public:
    SampleBlock& Input() { return input; }

    SampleBlock const& Output(int) const { return output; }

    void RunStage(int) {
        oneapi::tbb::parallel_invoke([this] { RunPart(0); }, [this] { RunPart(1); }, [this] { RunPart(2); });
        bench::Combine(parts[0], parts[1], parts[2], output);
    }

private:
    void RunPart(std::size_t place) { Work(input, parts[place], weight); }

    SampleBlock input;
    std::array<SampleBlock, partyCount> parts;
    SampleBlock output;
};

template <typename Passage>
void Run(benchmark::State& state, Passage& passage) {
    passage.Pass(blocksPerRun); // starts the threads
    for (auto _ : state)
        passage.Pass(blocksPerRun);
    if (!passage.Faultless())
        state.SkipWithError("a block was lost or changed");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocksPerRun));
}

template <std::int64_t weight>
void Qmt(benchmark::State& state) {
    ParallelChain chain(weight);
    Run(state, chain.Ends());
}

template <std::int64_t weight>
void Tbb(benchmark::State& state) {
    bench::SamplePipeline<Fork<weight>> pipeline(1, inFlight);
    Run(state, pipeline);
}

} // namespace

BENCHMARK(Qmt<1>)->Name("Parallel/Qmt/weight:1")->UseRealTime();
BENCHMARK(Tbb<1>)->Name("Parallel/Tbb/weight:1")->UseRealTime();
BENCHMARK(Qmt<256>)->Name("Parallel/Qmt/weight:256")->UseRealTime();
BENCHMARK(Tbb<256>)->Name("Parallel/Tbb/weight:256")->UseRealTime();
