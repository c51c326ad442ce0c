// Once a chain runs, its threads allocate nothing, take no lock, and enter the system only to sleep and to
// wake each other.
#include <unistd.h>

#include "support/chain_fixtures.h"
#include "support/path_counters.h"

namespace QMT {

namespace {

struct RunningPath : ChainTest {
    void SetUp() override {
        if (!CanCountPaths())
            GTEST_SKIP() << "this kernel does not dispatch system calls to the program";
    }

    static constexpr int measured = 5000;

    // What the chain between the two does for so many buffers, after it has warmed up; then it is stopped.
    static PathCounts CountsOf(Writer& writer, Reader& reader) {
        Transfer(writer, reader, 2000);
        OpenWindow();
        Transfer(writer, reader, measured);
        PathCounts const counts = CloseWindow();
        EXPECT_EQ(reader.order.faults, 0);
        writer.StopLinkedProcessing();
        reader.StopLinkedProcessing();
        return counts;
    }
};

TEST_F(RunningPath, CountersSeeWhatTheThreadsOfAChainDo) {
    CritSection section(nullptr);
    for (std::size_t offence = 0; offence < 6; ++offence) {
        Writer writer(4);
        PushLink link(4);
        Reader reader;
        writer.LinkToFollowing(&link);
        reader.SetPreceedingLink(&link);
        if (offence >= 3)
            link.CoupleToPredecessor(); // it is the writing thread that offends
        link.onProcess = [&] {
            CountThisThread();
            if (offence % 3 == 0)
                FreeBlock(AllocateBlock(1)); // in the library, so that it is not left out
            else if (offence % 3 == 1)
                CritSectionLock const lock(&section);
            else
                ::getppid();
        };
        PathCounts const counts = CountsOf(writer, reader);
        for (std::size_t kind = 0; kind < 3; ++kind)
            EXPECT_TRUE(kind == offence % 3 ? counts[kind] >= measured : counts[kind] == 0)
                << testing::PrintToString(counts) << " for offence " << offence;
    }
}

TEST_F(RunningPath, OfPushedCoupledAndPulledLinksIsFree) {
    Writer writer(4);
    PushLink first(3), coupled(3);
    Crossover crossover(3);
    PullLink pull(3), last(3);
    Reader reader;
    writer.LinkToFollowing(&first);
    first.LinkToFollowing(&coupled);
    coupled.CoupleToPredecessor();
    coupled.LinkToFollowing(&crossover);
    pull.LinkToPreceeding(&crossover);
    last.LinkToPreceeding(&pull);
    reader.LinkToPreceeding(&last);
    first.onProcess = crossover.onProcess = pull.onProcess = last.onProcess = &CountThisThread;
    EXPECT_EQ(CountsOf(writer, reader), PathCounts{});
}

TEST_F(RunningPath, OfParallelLinksIsFree) {
    auto const countsOf = [](Writer& writer, auto& stage) {
        Reader reader(&stage);
        stage.onBeforeEndWrite = &CountThisThread;
        for (auto& party : stage.parties)
            party.onProcess = &CountThisThread;
        PathCounts const counts = CountsOf(writer, reader);
        stage.StopAll();
        return counts;
    };
    Writer writers[] = {Writer(4), Writer(4), Writer(4)};
    PullStage pulled(writers[0], 3, 3);
    PushStage pushed(writers[1], 3, 3), coupled(writers[2], 3, 3);
    coupled.CoupleToPredecessor();
    for (PathCounts const& counts :
         {countsOf(writers[0], pulled), countsOf(writers[1], pushed), countsOf(writers[2], coupled)})
        EXPECT_EQ(counts, PathCounts{});
}

} // namespace
} // namespace QMT
