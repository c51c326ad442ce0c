// How many blocks a second pass through a ring, beside boost's queue for one producer and one consumer. Every
// byte of a block is written and read on both sides: in place with the ring, in a block of the user's own
// with the queue, which copies.
#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <boost/lockfree/spsc_queue.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <string>
#include <thread>

#include "qmt/chain/rotating_buffers.h"

namespace {

constexpr std::size_t blocksHeld = 1'024;
constexpr std::uint64_t blocksPerRun = 16'384;

template <std::size_t bytes>
class Block {
public:
    void Fill(std::uint64_t value) { words.fill(value); }

    std::uint64_t Sum() const { return std::accumulate(words.begin(), words.end(), std::uint64_t{0}); }

private:
    std::array<std::uint64_t, bytes / sizeof(std::uint64_t)> words;
};

template <std::size_t bytes>
class Ring {
public:
    bool Write(std::uint64_t value) {
        unsigned char** const slot = ring.BeginWrite();
        if (slot == nullptr)
            return false;
        reinterpret_cast<Block<bytes>*>(*slot)->Fill(value);
        ring.EndWrite();
        return true;
    }

    bool Read(std::uint64_t& sum) {
        unsigned char** const slot = ring.BeginRead();
        if (slot == nullptr)
            return false;
        sum += reinterpret_cast<Block<bytes> const*>(*slot)->Sum();
        ring.EndRead();
        return true;
    }

private:
    QMT::RotatingFixedBuffers ring{static_cast<int>(blocksHeld) + 1, bytes};
};

template <std::size_t bytes>
class Queue {
public:
    bool Write(std::uint64_t value) {
        Block<bytes> block;
        block.Fill(value);
        return queue.push(block);
    }

    bool Read(std::uint64_t& sum) {
        Block<bytes> block;
        if (!queue.pop(block))
            return false;
        sum += block.Sum();
        return true;
    }

private:
    boost::lockfree::spsc_queue<Block<bytes>, boost::lockfree::capacity<blocksHeld>> queue;
};

// What a side does that cannot go on.
struct Yield {
    static void Wait() { std::this_thread::yield(); }
};

struct Poll {
    static void Wait() {}
};

// A reader on a thread of its own, which reads run after run until it is told to end.
template <typename Passage, typename Idle>
class Reader {
public:
    explicit Reader(Passage& toRead) : passage(toRead), thread([this] { ReadRuns(); }) {}

    ~Reader() {
        ending.store(true);
        thread.join();
    }

    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;

    // Waits until so many runs have been read.
    void WaitForRun(std::uint64_t run) const {
        while (runsRead.load(std::memory_order_acquire) < run)
            Idle::Wait();
    }

    // Good once the runs have been read.
    std::uint64_t Sum() const { return sum; }

private:
    void ReadRuns() {
        while (ReadRun())
            runsRead.store(runsRead.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }

    bool ReadRun() {
        std::uint64_t sumOfRun = 0; // not a member: its cache line would be the writer's too
        for (std::uint64_t i = 0; i < blocksPerRun; ++i) {
            while (!passage.Read(sumOfRun)) {
                if (ending.load(std::memory_order_relaxed))
                    return false;
                Idle::Wait();
            }
        }
        sum += sumOfRun;
        return true;
    }

    Passage& passage;
    std::uint64_t sum = 0;
    std::atomic<std::uint64_t> runsRead{0};
    std::atomic<bool> ending{false};
    std::thread thread;
};

template <std::size_t bytes>
std::uint64_t SumOfRun() {
    return blocksPerRun * (blocksPerRun - 1) / 2 * (bytes / sizeof(std::uint64_t));
}

template <std::size_t bytes>
void Finish(benchmark::State& state, std::uint64_t sum) {
    if (sum != static_cast<std::uint64_t>(state.iterations()) * SumOfRun<bytes>())
        state.SkipWithError("a block was lost or changed");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocksPerRun));
}

template <template <std::size_t> typename Passage, std::size_t bytes, typename Idle>
void TwoThreads(benchmark::State& state) {
    auto const passage = std::make_unique<Passage<bytes>>();
    Reader<Passage<bytes>, Idle> reader(*passage);
    std::uint64_t runs = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < blocksPerRun; ++i)
            while (!passage->Write(i))
                Idle::Wait();
        reader.WaitForRun(++runs);
    }
    Finish<bytes>(state, reader.Sum());
}

template <template <std::size_t> typename Passage, std::size_t bytes>
void OneThread(benchmark::State& state) {
    auto const passage = std::make_unique<Passage<bytes>>();
    std::uint64_t sum = 0;
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < blocksPerRun; ++i) {
            passage->Write(i);
            passage->Read(sum);
        }
    }
    Finish<bytes>(state, sum);
}

template <std::size_t bytes>
void Register() {
    auto const add = [](std::string const& name, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark((name + "/bytes:" + std::to_string(bytes)).c_str(), function)
            ->UseRealTime();
    };
    add("Ring/TwoThreads/Qmt", &TwoThreads<Ring, bytes, Yield>);
    add("Ring/TwoThreads/Boost", &TwoThreads<Queue, bytes, Yield>);
    add("Ring/TwoThreadsPolling/Qmt", &TwoThreads<Ring, bytes, Poll>);
    add("Ring/TwoThreadsPolling/Boost", &TwoThreads<Queue, bytes, Poll>);
    add("Ring/OneThread/Qmt", &OneThread<Ring, bytes>);
    add("Ring/OneThread/Boost", &OneThread<Queue, bytes>);
}

bool const registered = (Register<16>(), Register<256>(), Register<4096>(), true);

} // namespace
