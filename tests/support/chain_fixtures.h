// What the tests of rings, links and pools share: blocks that show it when they are torn, links that pass
// them on and check their order, and ways to hold a thread at the place where a race is wanted.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

#include "qmt/chain/chain_links.h"
#include "qmt/chain/thread_pool.h"
#include "support/sync_action.h"

namespace QMT {

using Number = std::uint64_t;

constexpr std::size_t blockSize = 64;
constexpr Number torn = ~Number{0};

// Builds with sync points are those for sanitizers, which slow the stress tests down.
constexpr int StressRounds(int rounds) {
    return SyncAction::possible ? rounds / 10 : rounds;
}

using Words = std::array<Number, blockSize / sizeof(Number)>;

// The content of the block with this number: every word depends on it.
inline Words WordsOf(Number number) {
    Words words;
    for (Number& word : words) {
        word = number;
        number = number * 6364136223846793005U + 1442695040888963407U;
    }
    return words;
}

inline void FillBlock(unsigned char* block, Number number) {
    Words const words = WordsOf(number);
    std::memcpy(block, words.data(), blockSize);
}

inline Number NumberOf(unsigned char const* block) {
    Words words;
    std::memcpy(words.data(), block, blockSize);
    return words == WordsOf(words[0]) ? words[0] : torn;
}

// Takes the numbers 0, 1, 2 and so on, each once, on one thread at a time.
struct InOrder {
    void Take(Number number) { faults += number == next++ ? 0 : 1; }

    Number next = 0;
    int faults = 0;
};

// A hang is ended by the time limit of the test run.
template <typename Condition>
void WaitUntil(Condition isTrue) {
    while (!isTrue())
        std::this_thread::yield();
}

// Gives a thread that should stand still every chance to do what it should not.
inline void LetOthersRun() {
    for (int i = 0; i < 200; ++i)
        std::this_thread::yield();
}

// Holds the first thread that stays here, until it is released.
class Hold {
public:
    ~Hold() { Release(); }

    void Stay() const { Stay(*state); }

    void WaitUntilReached() const { state->reached.wait(false); }

    void Release() const { Raise(state->released); }

protected:
    struct State {
        std::atomic<bool> taken{false};
        std::atomic<bool> reached{false};
        std::atomic<bool> released{false};
    };

    static void Stay(State& state) {
        if (state.taken.exchange(true))
            return;
        Raise(state.reached);
        state.released.wait(false);
    }

    // The held thread may come to it late.
    std::shared_ptr<State> state = std::make_shared<State>();

private:
    static void Raise(std::atomic<bool>& flag) {
        flag = true;
        flag.notify_all();
    }
};

// Holds the first thread that comes to a sync point.
class HeldPoint : public Hold {
public:
    explicit HeldPoint(char const* name)
        : action(name, [held = state] {
              Stay(*held);
              return false;
          }) {}

private:
    SyncAction action;
};

inline thread_local bool isFreshThread = false;
inline thread_local std::atomic<bool>* sleepMark = nullptr;

// Stops a chain on a thread of its own.
class Stopper {
public:
    explicit Stopper(ChainLink& link)
        : thread([this, &link] {
              sleepMark = &asleep;
              link.StopLinkedProcessing();
          }) {}

    // The stop is under way and waits for a task or a pull. Needs sync points.
    void WaitUntilAsleep() const { asleep.wait(false); }

private:
    std::atomic<bool> asleep{false};
    std::jthread thread;
};

// A neighbour that counts what reaches it.
class Spy : public ChainLink {
public:
    std::function<void()> onCall;
    std::atomic<int> pushes{0};
    std::atomic<int> pulls{0};
    std::atomic<int> stops{0};

    void PushProcess() override { Count(pushes); }

    void PullProcess() override { Count(pulls); }

    void StopLinkedProcessing() override { Count(stops); }

    void Process() override {}

private:
    void Count(std::atomic<int>& calls) const {
        if (onCall)
            onCall();
        ++calls;
    }
};

// Writes the numbered blocks.
class Writer : public ExternalPushLink {
public:
    explicit Writer(int slots) { GetBuffers().SetProperties(slots, blockSize); }

    void Process() override {}

    // Without room it pushes all the same: a count may have found the next ring full.
    void WriteNext() {
        unsigned char** const slot = BeginWrite();
        if (slot == nullptr) {
            PushAgain();
            return;
        }
        FillBlock(*slot, next++);
        EndWrite();
    }

    void PushAgain() {
        if (following != nullptr)
            following->PushProcess();
    }

    Number next = 0;
};

class Reader : public ExternalPullLink {
public:
    void Process() override {}

    void ReadNext() {
        if (unsigned char** const slot = BeginRead()) {
            order.Take(NumberOf(*slot));
            EndRead();
        }
    }

    InOrder order;
};

// Sends so many more blocks through the chain between the two.
inline void Transfer(Writer& writer, Reader& reader, int count) {
    Number const end = writer.next + static_cast<Number>(count);
    while (reader.order.next < end) {
        if (writer.next < end)
            writer.WriteNext();
        else
            writer.PushAgain();
        reader.ReadNext();
        std::this_thread::yield();
    }
}

// Passes each buffer on and checks that it gets them in order, in one call at a time.
template <typename Base>
class Relay : public Base {
public:
    explicit Relay(int slots) { this->GetBuffers().SetProperties(slots, blockSize); }

    std::function<void()> onProcess;
    std::atomic<int> calls{0}; // that have ended
    std::atomic<int> faults{0};
    std::atomic<bool> ranOnFreshThread{false};
    InOrder order;

    void Process() override {
        faults += inside.exchange(true) ? 1 : 0;
        ranOnFreshThread = isFreshThread;
        if (onProcess)
            onProcess();
        if (ChainLink* const input = this->GetPreceeding())
            PassOn(input->GetBuffers(), this->GetBuffers());
        inside = false;
        ++calls;
    }

    bool SawAll(Number count) const { return faults == 0 && order.faults == 0 && order.next == count; }

private:
    void PassOn(RotatingFixedBuffers& input, RotatingFixedBuffers& output) {
        unsigned char** const from = input.BeginRead();
        unsigned char** const to = output.BeginWrite();
        if (from == nullptr || to == nullptr)
            return;
        Number const number = NumberOf(*from);
        order.Take(number);
        FillBlock(*to, number);
        input.EndRead();
        output.EndWrite();
    }

    std::atomic<bool> inside{false};
};

// Gives the link one count.
template <typename Link>
void Notify(Link& link) {
    if constexpr (std::is_base_of_v<InternalPushLink, Link>)
        link.PushProcess();
    else
        link.PullProcess();
}

// A pool for the links of a test, which are declared in the test and stopped before it ends.
class ChainTest : public testing::Test {
protected:
    ChainTest() { UseNewPool(); }

    ~ChainTest() override { ChainLink::SetThreadPoolToUse(nullptr); }

    void UseNewPool() {
        pools.emplace_back("chain test", 8);
        pools.back().SetThreadsStartFunc([] { ++startedThreads; });
        ChainLink::SetThreadPoolToUse(&pools.back());
        startedThreads = 0;
    }

    // A link without a task gets one from the pool of the moment. Afterwards the link is stopped in any case.
    template <typename Link>
    bool IsStopped(Link& link) {
        ThreadPool fresh("fresh", 8);
        fresh.SetThreadsStartFunc([] { isFreshThread = true; });
        ChainLink::SetThreadPoolToUse(&fresh);
        int const before = link.calls;
        Notify(link);
        WaitUntil([&] { return link.calls > before; });
        link.StopLinkedProcessing();
        ChainLink::SetThreadPoolToUse(&pools.back());
        return link.ranOnFreshThread;
    }

    static inline std::atomic<int> startedThreads{0};
    std::deque<ThreadPool> pools; // the last one is in use
};

// Races that are forced through sync points.
class ForcedRace : public ChainTest {
protected:
    void SetUp() override {
        if (!SyncAction::possible)
            GTEST_SKIP() << "built without sync points";
    }

private:
    SyncAction sleep{"WaitOnEvents: before sleeping", [] {
                         if (sleepMark != nullptr) {
                             *sleepMark = true;
                             sleepMark->notify_all();
                         }
                         return false;
                     }};
};

} // namespace QMT
