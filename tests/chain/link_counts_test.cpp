#include "qmt/chain/link_counts.h"

#include "support/chain_fixtures.h"

namespace QMT {
namespace {

TEST(RingCounting, IsOfFullEmptyAndFill) {
    RotatingFixedBuffers ring(4, blockSize);
    auto const write = [&] { return ring.BeginWrite() != nullptr && (ring.EndWrite(), true); };
    auto const read = [&] { return ring.BeginRead() != nullptr && (ring.EndRead(), true); };
    std::size_t size = 0;
    EXPECT_FALSE(read() || ring.BeginPartialRead(size) || ring.TestRead());
    for (int round = 0; round < 3; ++round) // across the end of the slots
        EXPECT_TRUE(write() && write() && read() && read());
    EXPECT_EQ(ring.Counts(), (RingCounts{0, 2, 2}));
    EXPECT_FALSE((write() && write() && write() && write()) || ring.TestWrite());
    ring.ClearFlags();
    EXPECT_EQ(ring.Counts(), (RingCounts{1, 2, 3}));
    ring.ZeroCounts();
    CountingSemaphore endRead(nullptr, 0);
    ring.SetEndReadNotifyRequired(&endRead);
    EXPECT_FALSE(ring.BeginRead() || ring.TestSharedRead());
    EXPECT_TRUE(write() && ring.BeginRead() && ring.TestSharedRead());
    EXPECT_EQ(ring.Counts(), (RingCounts{0, 1, 1}));
}

// Of each link pushes, pulls, those that wait, and calls.
String Shown(std::vector<LinkCounts> const& counts) {
    String text;
    for (LinkCounts const& at : counts)
        text << at.pushes << u" " << at.pulls << u" " << at.waiting << u" " << at.processCalls << u", ";
    return text;
}

TEST_F(ChainTest, CountsGoOnOverStopsUntilZeroed) {
    Writer writer(4);
    PushLink push(4);
    Crossover crossover(3);
    writer.LinkToFollowing(&push);
    push.LinkToFollowing(&crossover);
    crossover.CoupleToPredecessor();
    crossover.SetTraceName(u"coupled");
    PullStage stage(crossover, 2, 3);
    Reader reader;
    reader.SetPreceedingLink(&stage);
    String places;
    for (LinkCounts const& at : CountChain(reader))
        places << at.position << at.party << NameOf(at.kind) << at.slots << (at.coupled ? at.name : u" ");
    EXPECT_EQ(places,
              u"10external push4 20push4 30crossover3coupled41pull3 42pull3 40pull array3 50external pull0 ");
    Hold const hold;
    push.onProcess = [&] { hold.Stay(); };
    writer.WriteNext();
    hold.WaitUntilReached();
    writer.WriteNext();
    reader.ReadNext();
    WaitUntil([&] { return stage.calls + stage.parties[0].calls + stage.parties[1].calls == 3; });
    EXPECT_EQ(Shown(CountChain(stage.parties[1])), u"0 0 0 0, 1 0 1 1, 0 0 0 0, 0 1 0 1, 0 1 0 1, 0 1 0 1, ");
    pool->AppCanExit(); // the task ends behind this Process, and drops what waits
    hold.Release();
    writer.StopLinkedProcessing();
    UseNewPool();
    EXPECT_EQ(Shown(CountChain(push)), u"0 0 0 0, 2 0 0 1, 1 0 0 1, 0 1 0 1, 0 1 0 1, 1 1 0 1, ");
    ZeroChainCounts(reader);
    std::jthread const onlooker([&](std::stop_token const& stop) {
        for (Number seen = 0, now = 0; !stop.stop_requested(); seen = now, std::this_thread::yield())
            EXPECT_GE(now = CountChain(reader)[2].processCalls, seen);
    });
    Transfer(writer, reader, StressRounds(1000));
    stage.StopAll();
    EXPECT_EQ(CountChain(writer)[1].processCalls, CountChain(push)[2].pushes);
}

} // namespace
} // namespace QMT
