// What the tests of rings, links and pools share: blocks that show it when they are torn, links that pass
// them on and check their order, and ways to hold a thread at the place where a race is wanted.
#pragma once

#include <atomic>
#include <cstring>
#include <deque>
#include <type_traits>

#include "qmt/chain/chain_links.h"
#include "qmt/chain/thread_pool.h"
#include "support/sync_action.h"
#include "support/text.h"

namespace QMT {

using Number = std::uint64_t;

constexpr std::size_t blockSize = 64;
constexpr Number torn = ~Number{0};

// Builds with sync points are those for sanitizers, which slow the stress tests down.
constexpr int StressRounds(int rounds) {
    return SyncAction::possible ? rounds / 10 : rounds;
}

// Every byte of the block depends on the number.
inline void FillBlock(unsigned char* block, Number number) {
    for (std::size_t i = 0; i < blockSize; i += sizeof number, number = number * 6364136223846793005U + 1)
        std::memcpy(block + i, &number, sizeof number);
}

inline Number NumberOf(unsigned char const* block) {
    Number number = 0;
    std::memcpy(&number, block, sizeof number);
    unsigned char expected[blockSize];
    FillBlock(expected, number);
    return std::memcmp(block, expected, blockSize) == 0 ? number : torn;
}

// Takes the numbers 0, 1, 2 and so on, each once, on one thread at a time.
struct InOrder {
    void Take(Number number) { faults += number == next++ ? 0 : 1; }

    bool IsAll(Number count) const { return faults == 0 && next == count; }

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
    for (int i = 0; i < 2000; ++i)
        std::this_thread::yield();
}

// Holds the first thread that stays here, until it is released. The copies are one hold.
class Hold {
public:
    void Stay() const {
        if (int expected = free; state->compare_exchange_strong(expected, reached))
            WaitUntil([this] { return *state == released; });
    }

    void WaitUntilReached() const {
        WaitUntil([this] { return *state != free; });
    }

    void Release() const { *state = released; }

private:
    enum { free, reached, released };

    std::shared_ptr<std::atomic<int>> state = std::make_shared<std::atomic<int>>(free);
};

// Holds the first thread that comes to a sync point.
struct HeldPoint : Hold {
    explicit HeldPoint(char const* name)
        : action(name, [hold = Hold(*this)] { return hold.Stay(), false; }) {}

    SyncAction action;
};

// A neighbour that counts what reaches it.
struct Spy : ChainLink {
    void PushProcess() override { onCall(), ++pushes; }

    void PullProcess() override { onCall(), ++pulls; }

    void StopLinkedProcessing() override { onCall(), ++stops; }

    void Process() override {}

    std::function<void()> onCall = [] {};
    std::atomic<int> pushes{0}, pulls{0}, stops{0};
};

struct Writer : ExternalPushLink {
    explicit Writer(int slots) { GetBuffers().SetProperties(slots, blockSize); }

    void Process() override {}

    // Writes the next numbered block. When there is none below `end`, or no room, it pushes all the same: a
    // count may have found the next ring full.
    void WriteNext(Number end = torn) {
        if (unsigned char** const slot = next < end ? BeginWrite() : nullptr)
            FillBlock(*slot, next++), EndWrite();
        else if (following != nullptr)
            following->PushProcess();
    }

    Number next = 0;
};

struct Reader : ExternalPullLink {
    explicit Reader(ChainLink* input = nullptr) { SetPreceedingLink(input); }

    void Process() override {}

    void ReadNext() {
        if (unsigned char** const slot = BeginRead())
            order.Take(NumberOf(*slot)), EndRead();
    }

    InOrder order;
};

// Sends so many more blocks through the chain between the two.
inline void Transfer(Writer& writer, Reader& reader, int count) {
    for (Number const end = writer.next + static_cast<Number>(count); reader.order.next < end;) {
        writer.WriteNext(end);
        reader.ReadNext();
        std::this_thread::yield();
    }
}

// Sends blocks in so many portions, and in each another thread stops the chain at some moment.
template <typename StopAll>
void TransferUnderStops(Writer& writer, Reader& reader, int portions, StopAll stopAll) {
    std::atomic<int> sent{0};
    std::jthread const control([&] {
        for (int seen = 0; seen < portions; WaitUntil([&] { return sent > seen; }), seen = sent) {
            for (int yields = seen % 8; yields > 0; --yields)
                std::this_thread::yield();
            stopAll();
        }
    });
    for (; sent < portions; ++sent)
        Transfer(writer, reader, 1 + sent % 5);
}

inline thread_local bool isFreshThread = false;

// Passes each buffer on and checks that it gets them in order, in one call at a time.
template <typename Base>
struct Relay : Base {
    explicit Relay(int slots) { this->GetBuffers().SetProperties(slots, blockSize); }

    void Process() override {
        order.faults += inside.exchange(true) ? 1 : 0;
        ranOnFreshThread = isFreshThread;
        onProcess();
        ChainLink* const input = this->GetPreceeding();
        unsigned char** const from = input == nullptr ? nullptr : input->GetBuffers().BeginRead();
        unsigned char** const to = this->GetBuffers().BeginWrite();
        if (from != nullptr && to != nullptr) {
            isReading = true;
            order.Take(NumberOf(*from));
            std::memcpy(*to, *from, blockSize);
            for (bool const writes : {order.next % 2 == 0, order.next % 2 != 0}) // each order is allowed
                writes ? this->GetBuffers().EndWrite() : (isReading = false, input->GetBuffers().EndRead());
        }
        inside = false;
        ++calls;
    }

    std::function<void()> onProcess = [] {};
    std::atomic<int> calls{0}; // that have ended
    std::atomic<bool> ranOnFreshThread{false}, inside{false}, isReading{false};
    InOrder order;
};

using PushLink = Relay<InternalPushLink>;
using PullLink = Relay<InternalPullLink>;
using Crossover = Relay<CrossoverLink>;

// A parallel stage with parties of its own, whose results must be the same buffer as the input.
template <typename ArrayBase, typename Party>
struct Stage : ArrayBase {
    Stage(ChainLink& input, int partyCount, int slots) {
        this->GetBuffers().SetProperties(slots, blockSize);
        this->LinkToPreceeding(&input);
        while (static_cast<int>(parties.size()) < partyCount)
            this->AddParallelLink(&parties.emplace_back(slots));
    }

    void Process() override {
        ranOnFreshThread = isFreshThread;
        ++calls;
        ArrayBase::Process();
    }

    void AfterParallelLinks() override {
        unsigned char* const input = this->GetPreceeding()->GetBuffers().ForPeekRead();
        order.Take(NumberOf(input));
        for (Party& party : parties) {
            unsigned char** const slot = party.GetBuffers().BeginRead();
            bool const isSame = slot != nullptr && std::memcmp(*slot, input, blockSize) == 0;
            order.faults += isSame && !party.isReading ? 0 : 1;
            party.GetBuffers().EndRead();
        }
        std::memcpy(*this->GetBuffers().BeginWrite(), input, blockSize);
    }

    void BeforeEndWrite() override { onBeforeEndWrite(), ++cycles; }

    void StopAll() {
        this->StopLinkedProcessing();
        for (Party& party : parties)
            party.StopLinkedProcessing();
    }

    bool AllSaw(Number count) const {
        return order.IsAll(count) &&
               std::ranges::all_of(parties, [&](auto const& party) { return party.order.IsAll(count); });
    }

    std::deque<Party> parties;
    std::function<void()> onBeforeEndWrite = [] {};
    std::atomic<int> calls{0}, cycles{0}; // calls that have begun
    std::atomic<bool> ranOnFreshThread{false};
    InOrder order;
};

using PushStage = Stage<ParallelPushLinkArray, PushLink>;
using PullStage = Stage<ParallelPullLinkArray, PullLink>;

// Gives the link one count.
template <typename Link>
void Notify(Link& link) {
    if constexpr (std::is_base_of_v<InternalPushLink, Link>)
        link.PushProcess();
    else
        link.PullProcess();
}

// A pool for the links of a test, which are declared in the test and stopped before it ends.
struct ChainTest : testing::Test {
    ChainTest() { UseNewPool(); }

    // When no link has a task, or the pool has been told to exit.
    void UseNewPool() {
        startedThreads = 0;
        pool.emplace("chain test", 8);
        pool->SetThreadsStartFunc([] { ++startedThreads; });
        ChainLink::SetThreadPoolToUse(&*pool);
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
        ChainLink::SetThreadPoolToUse(&*pool);
        return link.ranOnFreshThread;
    }

    static inline std::atomic<int> startedThreads{0};
    std::optional<ThreadPool> pool;
};

} // namespace QMT
