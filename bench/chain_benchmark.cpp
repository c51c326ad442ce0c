// How many blocks a second pass through a chain, beside oneTBB's pipeline with the same work and the same
// number of blocks in flight, and beside the work alone.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "sample_block.h"
#include "sample_chain.h"
#include "sample_pipeline.h"

namespace {

using bench::SampleBlock;

// Enough for oneTBB, whose threads join anew in each run.
constexpr std::uint64_t blocksPerRun = 32'768;

int Stages(benchmark::State const& state) {
    return static_cast<int>(state.range(0));
}

std::size_t InFlight(benchmark::State const& state) {
    return static_cast<std::size_t>(state.range(1));
}

template <typename Passage>
void Run(benchmark::State& state, Passage& passage) {
    passage.Pass(blocksPerRun); // starts the threads
    for (auto _ : state)
        passage.Pass(blocksPerRun);
    if (!passage.Faultless())
        state.SkipWithError("a block was lost or changed");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocksPerRun));
}

void Threaded(benchmark::State& state) {
    bench::SampleChain chain(Stages(state), InFlight(state), false);
    Run(state, chain.Ends());
}

void Coupled(benchmark::State& state) {
    bench::SampleChain chain(Stages(state), InFlight(state), true);
    Run(state, chain.Ends());
}

// Two blocks, between which the stages go to and fro.
class Pair {
public:
    SampleBlock& Input() { return blocks[0]; }

    SampleBlock const& Output(int stages) const { return blocks[Side(stages)]; }

    void RunStage(int place) { work(blocks[Side(place)], blocks[Side(place + 1)]); }

private:
    static std::size_t Side(int place) { return static_cast<std::size_t>(place % 2); }

    bench::MultiplyAdd work;
    std::array<SampleBlock, 2> blocks;
};

void Tbb(benchmark::State& state) {
    bench::SamplePipeline<Pair> pipeline(Stages(state), InFlight(state));
    Run(state, pipeline);
}

// The work alone, on one thread, with as many blocks at each place as a chain's ring has.
class BareRow {
public:
    BareRow(int stageCount, std::size_t inFlight)
        : places(static_cast<std::size_t>(stageCount) + 1, std::vector<SampleBlock>(inFlight + 1)) {}

    void Pass(std::uint64_t count) {
        for (std::uint64_t const end = passed + count; passed < end; ++passed)
            PassOne(passed % places.front().size());
    }

    bool Faultless() const { return faultless; }

private:
    void PassOne(std::size_t block) {
        bench::WriteSamples(places.front()[block], passed);
        for (std::size_t place = 1; place < places.size(); ++place) {
            work(places[place - 1][block], places[place][block]);
            benchmark::ClobberMemory();
        }
        faultless = faultless &&
                    bench::HoldsSamples(places.back()[block], passed, static_cast<int>(places.size()) - 1);
    }

    bench::MultiplyAdd work;
    std::vector<std::vector<SampleBlock>> places;
    std::uint64_t passed = 0;
    bool faultless = true;
};

void Bare(benchmark::State& state) {
    BareRow row(Stages(state), InFlight(state));
    Run(state, row);
}

void Shapes(benchmark::internal::Benchmark* one) {
    one->ArgNames({"stages", "inFlight"})->ArgsProduct({{1, 2, 4, 8}, {32, 256}})->UseRealTime();
}

} // namespace

BENCHMARK(Coupled)->Name("Chain/Coupled")->Apply(Shapes);
BENCHMARK(Threaded)->Name("Chain/Threaded")->Apply(Shapes);
BENCHMARK(Tbb)->Name("Chain/Tbb")->Apply(Shapes);
BENCHMARK(Bare)->Name("Chain/Bare")->Apply(Shapes);
