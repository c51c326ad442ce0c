#include <typeinfo>

#include "support/chain_fixtures.h"

namespace QMT {
namespace {

using InternalLinks = ChainTest;

TEST_F(InternalLinks, CountIsWorthOneProcessAndOneStepToTheNeighbour) {
    Spy source, next;
    PushLink push(2);
    PullLink pull(2);
    push.LinkToFollowing(&next);
    pull.LinkToPreceeding(&source);
    next.onCall = [&] { EXPECT_EQ(push.calls, next.pushes + 1) << "the push comes after the process"; };
    source.onCall = [&] { EXPECT_EQ(pull.calls, source.pulls) << "the pull comes before the process"; };
    for (int i = 0; i < 5; ++i) {
        push.PushProcess();
        push.PullProcess();            // nothing
        push.ChainLink::PushProcess(); // nothing
        pull.PullProcess();
        pull.PushProcess(); // nothing
    }
    WaitUntil([&] { return next.pushes == 5 && pull.calls == 5; });
    next.onCall = source.onCall = [] {};
    for (int stops = 1; stops <= 2; ++stops) { // the second one is only passed on
        push.StopLinkedProcessing();
        pull.StopLinkedProcessing();
        EXPECT_TRUE(next.stops == stops && source.stops == stops);
    }
    EXPECT_TRUE(push.calls == 5 && next.pushes == 5 && pull.calls == 5 && source.pulls == 5);
    EXPECT_TRUE(IsStopped(push) && IsStopped(pull));
    push.CoupleToPredecessor();
    push.PushProcess();
    push.ChainLink::PushProcess();
    EXPECT_TRUE(push.calls == 7 && next.pushes == 7) << "a coupled link runs inside the push";
    push.StopLinkedProcessing();
    EXPECT_TRUE(next.stops == 4 && startedThreads == 2);
}

// Races that are forced through sync points, on links of each kind, fresh and after a stop.
class LinkRaces : public ChainTest {
protected:
    void SetUp() override {
        if (!SyncAction::possible)
            GTEST_SKIP() << "built without sync points";
    }

    // Calls `test(link)` with links that have not yet processed anything since `calls` was last set to 0.
    void ForEachLink(auto test) {
        (ForLinksOf<PushLink>(test), ForLinksOf<PullLink>(test), ForLinksOf<Crossover>(test));
    }

    static void NotifyAndWait(auto& link) {
        Notify(link);
        WaitUntil([&] { return link.calls == 1; });
        link.calls = 0;
    }

    // The link has made so many calls, makes one for each further count, and can be stopped for good.
    void ExpectSound(auto& link, int calls) {
        WaitUntil([&] { return link.calls >= calls; });
        LetOthersRun();
        link.StopLinkedProcessing();
        EXPECT_EQ(link.calls, calls);
        EXPECT_TRUE(IsStopped(link) && link.calls == calls + 1 && link.order.faults == 0);
    }

    static inline thread_local bool isIntruder = false;
    static inline std::atomic<bool> intruderSleeps{false};

private:
    template <typename Link>
    void ForLinksOf(auto test) {
        for (bool const hasRun : {false, true}) {
            SCOPED_TRACE(testing::Message() << typeid(Link).name() << (hasRun ? ", has run" : ", fresh"));
            UseNewPool();
            Link link(2);
            if (hasRun) {
                NotifyAndWait(link);
                link.StopLinkedProcessing();
            }
            intruderSleeps = false;
            test(link);
        }
    }

    SyncAction sleep{"WaitOnEvents: before sleeping", [] { return isIntruder && !(intruderSleeps = true); }};
};

TEST_F(LinkRaces, StopWaitsForProcessAndDropsTheCounts) {
    Spy next, source;
    PushLink push(2);
    PullLink pull(2);
    push.LinkToFollowing(&next);
    pull.LinkToPreceeding(&source);
    auto const stopDuringProcess = [&](auto& link, Spy const& neighbour, int stopsPassedOnBefore) {
        Hold inProcess;
        link.onProcess = [=] { inProcess.Stay(); };
        for (int i = 0; i < 5; ++i)
            Notify(link);
        inProcess.WaitUntilReached();
        intruderSleeps = false;
        std::jthread stopping([&] { isIntruder = true, link.StopLinkedProcessing(); });
        WaitUntil([] { return intruderSleeps.load(); });
        EXPECT_EQ(neighbour.stops, stopsPassedOnBefore);
        inProcess.Release();
        stopping.join();
        EXPECT_EQ(neighbour.stops, 1);
        ExpectSound(link, 1);
    };
    stopDuringProcess(push, next, 0);   // it stops before the link behind it
    stopDuringProcess(pull, source, 1); // and it after the link in front of it
}

TEST_F(LinkRaces, AnythingMayComeInEachPhaseOfStartAndStop) {
    enum Act { Count, Stop, Exit };

    enum Until { ItEnds, ItSleeps, AWhileHasPassed };

    // A thread is held at the point, which `first` has brought there, at a running link unless it is a count;
    // the intruder comes meanwhile; then the held thread goes on, and so many calls are made in the end.
    struct {
        std::string point;
        Act first, intruder;
        Until until;
        int calls;
    } const races[] = {
        {"LinkTask::Start: before RunTask", Count, Count, AWhileHasPassed, 2},
        {"LinkTask::Begin", Count, Count, ItEnds, 2},
        {"LinkTask::Begin", Count, Stop, ItSleeps, 0},
        {"LinkTask::Begin", Count, Exit, ItEnds, 0},
        {"LinkTask::Notify: before the signal", Count, Stop, ItEnds, 1},
        {"LinkTask::End", Stop, Count, ItEnds, 0},
        {"LinkTask::End", Stop, Stop, AWhileHasPassed, 0},
        {"LinkTask::End", Stop, Exit, ItEnds, 0},
        {"LinkTask::End", Exit, Count, ItEnds, 0},
        {"LinkTask::End", Exit, Stop, ItSleeps, 0},
        {"PoolThread: task has returned", Stop, Count, ItEnds, 0},
        {"PoolThread: task has returned", Exit, Count, ItSleeps, 1},
        {"PoolThread: task has returned", Exit, Stop, ItSleeps, 0},
        {"LinkTask::Stop: the task has ended", Stop, Count, ItEnds, 0},
        {"LinkTask::Stop: the task has ended", Stop, Stop, AWhileHasPassed, 0},
        {"LinkTask::Stop: the counts are dropped", Stop, Count, ItEnds, 1},
        {"LinkTask::Stop: the counts are dropped", Stop, Stop, AWhileHasPassed, 0},
    };

    for (auto const& race : races) {
        SCOPED_TRACE(testing::Message() << race.point << ", " << race.first << ", " << race.intruder);
        ForEachLink([&](auto& link) {
            auto const act = [&](Act what) {
                if (what == Exit)
                    pool->AppCanExit(), UseNewPool();
                else
                    what == Count ? Notify(link) : link.StopLinkedProcessing();
            };
            if (race.first != Count)
                NotifyAndWait(link);
            HeldPoint const held(race.point.c_str());
            std::jthread first(act, race.first);
            held.WaitUntilReached();
            if (race.first == Exit || race.point == "LinkTask::Begin")
                first.join(); // it is the task that is held
            std::jthread intruder([&] { isIntruder = true, act(race.intruder); });
            if (race.until == ItEnds)
                intruder.join();
            else if (race.until == ItSleeps)
                WaitUntil([] { return intruderSleeps.load(); });
            else
                LetOthersRun();
            held.Release();
            for (std::jthread* const thread : {&first, &intruder})
                if (thread->joinable())
                    thread->join();
            ExpectSound(link, race.calls);
        });
    }
}

TEST_F(LinkRaces, StartThatFailsOrIsRefusedIsNotTriedAgainBeforeAStop) {
    for (bool const isRefused : {false, true}) {
        ForEachLink([&](auto& link) {
            int attempts = 0;
            UseNewPool();
            if (isRefused)
                pool->AppCanExit();
            {
                SyncAction const starting("LinkTask::Start: before RunTask",
                                          [&] { return ++attempts, false; });
                SyncAction const failing("Thread::StartRunning", [] { return true; });
                for (int i = 0; i < 3; ++i)
                    Notify(link);
                link.StopLinkedProcessing();
            }
            EXPECT_EQ(attempts, 1);
            UseNewPool();
            Notify(link);
            ExpectSound(link, 1);
        });
    }
}

TEST_F(LinkRaces, PullUnderWayDoesNotRestartTheLinkInFront) {
    struct Upstream : PullLink {
        using PullLink::PullLink;

        void PullProcess() override { inPull.Stay(), PullLink::PullProcess(); }

        Hold inPull;
    };

    Upstream upstream(2);
    PullLink link(2);
    link.LinkToPreceeding(&upstream);
    upstream.PullLink::PullProcess();
    link.PullProcess();
    upstream.inPull.WaitUntilReached();
    {
        std::jthread const first([&] { isIntruder = true, link.StopLinkedProcessing(); });
        WaitUntil([] { return intruderSleeps.load(); });
        std::jthread const second([&] { link.StopLinkedProcessing(); });
        LetOthersRun();
        upstream.inPull.Release();
    }
    EXPECT_TRUE(IsStopped(upstream) && IsStopped(link));
}

// Each round also destroys the links right after the stop.
TEST_F(InternalLinks, CrossoverIsStoppedHoweverItIsJoined) {
    std::mt19937 generator = SeededGenerator();
    for (int joins = 0; joins < StressRounds(800); ++joins) {
        // The pull may be told of a stop, because the crossover knows it.
        bool const feederIsCoupled = joins & 1, pullIsTold = joins & 2, fromReader = joins & 4;
        Writer writer(3);
        PushLink feeder(2);
        Crossover crossover(2);
        PullLink pull(2);
        Reader reader;
        writer.LinkToFollowing(&feeder);
        if (feederIsCoupled)
            feeder.CoupleToPredecessor();
        feeder.LinkToFollowing(&crossover);
        pull.SetPreceedingLink(&crossover);
        if (pullIsTold)
            pull.LinkToPreceeding(&crossover);
        reader.LinkToPreceeding(&pull);
        ChainLink* const links[] = {&writer, &reader, &crossover};
        TransferUnderStops(writer, reader, 20, [&] { links[generator() % 3]->StopLinkedProcessing(); });
        writer.WriteNext(); // and one that is still on its way
        reader.ReadNext();
        links[fromReader ? 1 : 0]->StopLinkedProcessing();
        if (!fromReader && !pullIsTold)
            reader.StopLinkedProcessing();
        if (joins % 32 >= 8)
            continue;
        SCOPED_TRACE(joins);
        EXPECT_TRUE(IsStopped(pull) && IsStopped(crossover) && IsStopped(feeder) != feederIsCoupled);
        Transfer(writer, reader, 1);
        reader.StopLinkedProcessing();
        writer.StopLinkedProcessing();
        EXPECT_TRUE(feeder.order.IsAll(writer.next) && crossover.order.IsAll(writer.next));
        EXPECT_TRUE(pull.order.IsAll(writer.next) && reader.order.IsAll(writer.next));
        crossover.PullProcess();
        EXPECT_TRUE(IsStopped(crossover)) << "a pull starts nothing there";
    }
}

} // namespace
} // namespace QMT
