// How long a single block takes through a chain of threads, beside threads that hand it on under a mutex and
// a condition variable. One block is on its way at a time, and its reader waits for it as the stages do.
#include <benchmark/benchmark.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "durations.h"
#include "qmt/general/threads.h"
#include "sample_block.h"
#include "sample_chain.h"

namespace {

using bench::SampleBlock;

class WaitingChain {
public:
    explicit WaitingChain(int stageCount) : chain(stageCount, 1, false) {
        Last().GetPreceeding()->GetBuffers().SetEndWriteNotifyRequired(&arrived);
        arrivedOnly.Add(&arrived);
    }

    void Pass() {
        chain.Ends().First().Write();
        QMT::WaitOnEvents(arrivedOnly, -1);
        arrived.Reset();
        Last().Read();
    }

    bool Faultless() { return Last().Faultless(); }

private:
    bench::Sink& Last() { return chain.Ends().Last(); }

    QMT::CountingSemaphore arrived{"arrived", 0};
    QMT::SVArray<QMT::Event*, QMT::Event*> arrivedOnly;
    bench::SampleChain chain;
};

// Where one thread leaves a block for the next.
class Handover {
public:
    void Give(SampleBlock* given) {
        {
            std::scoped_lock const lock(mutex);
            block = given;
        }
        isThere.notify_one();
    }

    SampleBlock* Take() {
        std::unique_lock lock(mutex);
        isThere.wait(lock, [this] { return block != nullptr; });
        return std::exchange(block, nullptr);
    }

private:
    std::mutex mutex;
    std::condition_variable isThere;
    SampleBlock* block = nullptr;
};

// Stages that hand one block to each other; the block `end` ends them.
class HandoverChain {
public:
    explicit HandoverChain(int stageCount) : places(static_cast<std::size_t>(stageCount) + 1) {
        for (std::size_t i = 0; i + 1 < places.size(); ++i)
            threads.emplace_back([this, i] { RunStage(places[i], places[i + 1]); });
    }

    ~HandoverChain() { places.front().Give(&end); }

    HandoverChain(HandoverChain const&) = delete;
    HandoverChain& operator=(HandoverChain const&) = delete;

    void Pass() {
        bench::WriteSamples(first, passed);
        places.front().Give(&first);
        auto const stages = static_cast<int>(threads.size());
        faultless = faultless && bench::HoldsSamples(*places.back().Take(), passed++, stages);
    }

    bool Faultless() const { return faultless; }

private:
    void RunStage(Handover& from, Handover& to) {
        bench::MultiplyAdd const work;
        SampleBlock result;
        for (SampleBlock* block = from.Take(); block != &end; block = from.Take()) {
            work(*block, result);
            to.Give(&result);
        }
        to.Give(&end);
    }

    SampleBlock first;
    SampleBlock end;
    std::vector<Handover> places;
    std::uint64_t passed = 0;
    bool faultless = true;
    std::vector<std::jthread> threads;
};

template <typename Chain>
void Latency(benchmark::State& state) {
    std::chrono::microseconds const pause(state.range(1));
    Chain chain(static_cast<int>(state.range(0)));
    chain.Pass(); // starts the threads
    bench::Durations durations(state.max_iterations);
    for (auto _ : state) {
        if (pause.count() > 0)
            std::this_thread::sleep_for(pause);
        state.SetIterationTime(durations.Add(bench::TimeOf([&] { chain.Pass(); })));
    }
    durations.Report(state, "");
    if (!chain.Faultless())
        state.SkipWithError("a block was lost or changed");
}

// One after the other, and with a pause in front of each (in microseconds), in which all threads fall asleep.
void Shapes(benchmark::internal::Benchmark* one) {
    one->ArgNames({"stages", "pause"})->ArgsProduct({{1, 4}, {0, 500}})->Iterations(2'000)->UseManualTime();
}

} // namespace

BENCHMARK_TEMPLATE(Latency, WaitingChain)->Name("Latency/Qmt")->Apply(Shapes);
BENCHMARK_TEMPLATE(Latency, HandoverChain)->Name("Latency/MutexAndCondition")->Apply(Shapes);
