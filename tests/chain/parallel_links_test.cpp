#include "support/chain_fixtures.h"

namespace QMT {
namespace {

using ParallelLinks = ChainTest;

// A push at the array's own task alone, as if its parties had no counts left.
void PushAtArrayOnly(PushStage& stage) {
    stage.InternalPushLink::PushProcess();
}

// Everything runs inside the writer's call.
void CoupleAll(PushStage& stage) {
    stage.CoupleToPredecessor();
    for (PushLink& party : stage.parties)
        party.CoupleToPredecessor();
}

TEST_F(ParallelLinks, CycleFreesTheInputBetweenItsTwoSteps) {
    Writer writer(2);
    PushStage stage(writer, 2, 3);
    CoupleAll(stage);
    EXPECT_EQ(stage.parties[0].GetPreceeding(), &writer);
    stage.parties[1].onProcess = [&] {
        EXPECT_FALSE(writer.TestWrite()) << "an end of a read frees nothing";
    };
    stage.onBeforeEndWrite = [&] {
        EXPECT_TRUE(stage.AllSaw(writer.next) && writer.TestWrite()) << "the slot is free";
        EXPECT_FALSE(stage.GetBuffers().TestRead()) << "the own write has not ended";
    };
    for (int count = 1; count <= 4; ++count) {
        writer.WriteNext();
        EXPECT_TRUE(stage.cycles == count && stage.GetBuffers().TestRead() && startedThreads == 0);
        stage.GetBuffers().EndRead();
        EXPECT_FALSE(stage.GetBuffers().TestRead());
    }
}

TEST_F(ParallelLinks, WithoutInputOrRoomNothingHappensAndTheCountsStay) {
    Writer writer(4);
    PushStage stage(writer, 2, 2);
    Spy next;
    stage.LinkToFollowing(&next);
    CoupleAll(stage);
    stage.PushProcess();
    EXPECT_TRUE(stage.cycles == 0 && !stage.GetBuffers().TestRead());
    writer.WriteNext();
    writer.WriteNext(); // the parties take it, the stage has no room for the result
    EXPECT_EQ(stage.cycles, 1);
    EXPECT_EQ(next.pushes, 3) << "an early return pushes too";
    EXPECT_TRUE(stage.GetBuffers().TestRead());
    stage.GetBuffers().EndRead();
    PushAtArrayOnly(stage);
    EXPECT_TRUE(stage.cycles == 2 && stage.AllSaw(2) && !writer.GetBuffers().TestRead());
    Writer alone(3);
    PushStage empty(alone, 0, 3);
    CoupleAll(empty);
    alone.WriteNext();
    EXPECT_TRUE(empty.AllSaw(1) && empty.GetBuffers().TestRead() && alone.GetBuffers().TestRead())
        << "without parties the input is left to the application";
}

TEST_F(ParallelLinks, FirstStepWaitsForEachParty) {
    for (std::size_t late = 0; late < 2; ++late) {
        Hold inProcess;
        Writer writer(3);
        PushStage stage(writer, 2, 3);
        stage.parties[late].onProcess = [&] { inProcess.Stay(); };
        writer.WriteNext();
        writer.WriteNext();
        inProcess.WaitUntilReached();
        WaitUntil([&] { return stage.calls == 1 && stage.parties[1 - late].calls == 1; });
        LetOthersRun();
        EXPECT_EQ(stage.cycles, 0);
        EXPECT_EQ(stage.parties[1 - late].calls, 1) << "the one ahead waits until the slot has been freed";
        inProcess.Release();
        WaitUntil([&] { return stage.cycles == 2; });
        stage.StopLinkedProcessing();
        EXPECT_FALSE(IsStopped(stage.parties[0])) << "a party is stopped by a call of its own";
        stage.StopAll();
        EXPECT_TRUE(stage.AllSaw(2));
    }
}

TEST_F(ParallelLinks, PredecessorIsPulledOnceByEachPartyAndOnceByTheArray) {
    Spy source;
    PullStage stage(source, 3, 3);
    stage.PullProcess();
    WaitUntil([&] { return stage.calls == 1 && source.pulls == 4; });
    stage.StopAll();
    EXPECT_TRUE(source.pulls == 4 && source.stops == 4);
}

TEST_F(ParallelLinks, RemovedLinksCanBeAddedAgain) {
    Writer writer(3);
    PushStage stage(writer, 2, 3);
    Reader reader(&stage);
    for (Number total = 20; total <= 60; total += 20) { // each time with one party more
        Transfer(writer, reader, 20);
        stage.StopAll();
        EXPECT_TRUE(stage.AllSaw(total));
        stage.RemoveParallelLinks();
        stage.parties.emplace_back(3).order.next = total;
        for (PushLink& party : stage.parties)
            stage.AddParallelLink(&party);
    }
}

TEST_F(ParallelLinks, StopDoesNotWaitForAPartyThatCannotDoItsShare) {
    ThreadPool refusing("refusing", 1);
    refusing.AppCanExit();
    for (std::size_t ready = 0; ready < 3; ++ready) { // parties that take the buffer
        for (bool const isRefused : {false, true}) {  // whether the pool refuses the others
            SCOPED_TRACE(testing::Message() << ready << " ready, refused: " << isRefused);
            Writer writer(4);
            PushStage stage(writer, 3, 3);
            Reader reader(&stage);
            Transfer(writer, reader, 10);
            stage.StopAll();
            FillBlock(*writer.BeginWrite(), writer.next++);
            writer.GetBuffers().EndWrite();
            int const callsOfStage = stage.calls;
            PushAtArrayOnly(stage);
            WaitUntil([&] { return stage.calls > callsOfStage; });
            for (std::size_t i = 0; i < ready; ++i) {
                int const calls = stage.parties[i].calls;
                stage.parties[i].PushProcess();
                WaitUntil([&] { return stage.parties[i].calls > calls; });
            }
            ChainLink::SetThreadPoolToUse(&refusing);
            for (std::size_t i = ready; i < 3 && isRefused; ++i)
                stage.parties[i].PushProcess();
            stage.StopAll();
            ChainLink::SetThreadPoolToUse(&*pool);
            Transfer(writer, reader, 10);
            stage.StopAll();
            EXPECT_TRUE(stage.AllSaw(21) && reader.order.IsAll(21));
        }
    }
}

// Every party sees every buffer once and in order, with tiny rings and more counts on the way than buffers.
template <typename StageType>
struct ParallelStress : ParallelLinks {
    // Calls `test(writer, stage, reader)` with stages of all sizes behind a link that is pulled if they are.
    void ForEachSize(auto test) {
        for (int size = 0; size < 6; ++size) {
            SCOPED_TRACE(size);
            int const slots = 2 + size % 2;
            Writer writer(slots);
            PullLink pulled(slots);
            pulled.SetPreceedingLink(&writer);
            bool const isPulled = std::is_same_v<StageType, PullStage>;
            StageType stage(isPulled ? static_cast<ChainLink&>(pulled) : writer, 2 + size / 2, slots);
            Reader reader(&stage);
            test(writer, stage, reader);
            stage.StopAll();
            EXPECT_TRUE(stage.AllSaw(writer.next) && reader.order.IsAll(writer.next));
            EXPECT_TRUE(IsStopped(pulled) && IsStopped(stage) != isCoupled);
            for (auto& party : stage.parties)
                EXPECT_TRUE(IsStopped(party));
        }
    }

    bool isCoupled = false;
};

using Stages = testing::Types<PushStage, PullStage>;
TYPED_TEST_SUITE(ParallelStress, Stages);

TYPED_TEST(ParallelStress, BurstsReachEveryPartyOnceAndInOrder) {
    auto const sendBursts = [&](Writer& writer, TypeParam& stage, Reader& reader) {
        if constexpr (std::is_same_v<TypeParam, PushStage>)
            if (this->isCoupled)
                stage.CoupleToPredecessor();
        for (int i = StressRounds(200); i > 0; --i) {
            Transfer(writer, reader, 1 + i % 20);
            for (int burst = i % 7; burst > 0; --burst)
                Notify(stage);
        }
    };
    this->ForEachSize(sendBursts);
    this->isCoupled = std::is_same_v<TypeParam, PushStage>;
    this->ForEachSize(sendBursts); // a coupled array waits for parties with threads
}

TYPED_TEST(ParallelStress, StopsAndRestartsLoseNothing) {
    std::mt19937 generator = SeededGenerator();
    this->ForEachSize([&](Writer& writer, TypeParam& stage, Reader& reader) {
        TransferUnderStops(writer, reader, StressRounds(4000), [&] {
            std::size_t const place = generator() % (2 * stage.parties.size());
            if (place < stage.parties.size())
                stage.parties[place].StopLinkedProcessing();
            else
                place % 2 == 0 ? stage.StopLinkedProcessing() : stage.StopAll();
        });
    });
}

TYPED_TEST(ParallelStress, PoolMayEndInTheMiddle) {
    this->ForEachSize([&](Writer& writer, TypeParam& stage, Reader& reader) {
        for (int i = StressRounds(100); i > 0; --i) {
            Transfer(writer, reader, 1 + i % 3);
            for (int burst = i % 4; burst > 0; --burst)
                writer.WriteNext();
            this->pool->AppCanExit();
            Notify(stage);
            stage.StopAll();
            this->UseNewPool();
        }
        Transfer(writer, reader, 1);
    });
}

} // namespace
} // namespace QMT
