#include "qmt/chain/thread_pool.h"

#include <new>

#include "qmt/general/threads.h"
#include "support/chain_fixtures.h"
#include "support/failing_allocations.h"

namespace QMT {
namespace {

// A task that ends when it is told to, and notes what it saw.
struct Job {
    bool Runs() { return !EventSignalled(done); }

    void Finish() {
        mayEnd.Signal();
        WaitUntil([&] { return !Runs(); });
    }

    static void Run(void* argument, Event* stopEvent) {
        auto* const self = static_cast<Job*>(argument);
        self->foundStopped = EventSignalled(*stopEvent);
        self->thread = std::this_thread::get_id();
        self->stop = stopEvent;
        SVArray<Event*, Event*> events;
        for (Event* const event : {stopEvent, &self->mayEnd})
            events.Add(event);
        self->wasStopped = WaitOnEvents(events, -1) == 0;
        if (self->wasStopped && self->lingersAfterStop)
            self->linger.Stay();
        ++self->runs;
    }

    Event done{true}, mayEnd{true};
    Hold linger;
    bool lingersAfterStop = false, foundStopped = false, wasStopped = false;
    int runs = 0;
    std::atomic<Event*> stop{nullptr};
    std::thread::id thread;
};

struct ThreadPoolTest : testing::Test {
    ThreadPoolTest() { UseNewPool(); }

    ~ThreadPoolTest() override {
        pool.reset();
        WaitUntil([] { return alive == 0; });
    }

    void UseNewPool() {
        pool.emplace("pool test", 1);
        pool->SetThreadsStartFunc(&CountThread);
        born = 0;
    }

    ErrorInfo* Start(Job& job) { return pool->RunTask(u"job", &Job::Run, &job, &job.done); }

    static void CountThread() {
        struct Census {
            Census() { ++alive, ++born; }

            ~Census() { --alive; }
        };

        thread_local Census const census;
    }

    // The threads that the pool has started, and all that have not ended.
    static inline std::atomic<int> born{0}, alive{0};

    std::optional<ThreadPool> pool;
    std::array<Job, 3> jobs;
};

TEST_F(ThreadPoolTest, GrowsWithTheTasksAndShrinksToItsSize) {
    for (Job& job : jobs)
        EXPECT_EQ(Start(job), nullptr);
    WaitUntil([] { return alive == 3; });
    for (Job& job : jobs) {
        EXPECT_TRUE(job.Runs());
        job.Finish();
        EXPECT_FALSE(job.foundStopped || job.wasStopped);
    }
    for (std::size_t reuse = 1; reuse <= 2; ++reuse) {
        EXPECT_NE(jobs[reuse].thread, jobs[0].thread);
        EXPECT_EQ(Start(jobs[reuse]), nullptr);
        jobs[reuse].Finish();
        EXPECT_EQ(jobs[reuse].thread, jobs[0].thread) << "the first idle thread is taken";
        WaitUntil([] { return alive == 1; });
        pool->AdjustMaxPoolSize(0);
    }
    EXPECT_EQ(born, 3) << "the start function runs once on each thread";
}

TEST_F(ThreadPoolTest, StopEventEndsTheTaskAndNeitherTheThreadNorTheNextTask) {
    for (Job& job : jobs) {
        HeldPoint const returned("PoolThread: task has returned");
        EXPECT_EQ(Start(job), nullptr);
        EXPECT_TRUE(job.Runs()) << "the done event is reset when the call returns";
        WaitUntil([&] { return job.stop != nullptr; });
        job.stop.load()->Signal();
        if (SyncAction::possible)
            returned.WaitUntilReached();
        job.stop.load()->Signal(); // a stray one, after the task has returned
        returned.Release();
        WaitUntil([&] { return !job.Runs(); });
        EXPECT_TRUE(job.wasStopped && !job.foundStopped);
        job.stop.load()->Signal(); // and one to the idle thread
    }
    EXPECT_EQ(pool->RunTask(u"no done event", &Job::Run, &jobs[0], nullptr), nullptr);
    jobs[0].mayEnd.Signal();
    pool.reset();
    EXPECT_TRUE(jobs[0].runs == 2 && born == 1);
}

TEST_F(ThreadPoolTest, ExitStopsTheTasksAndRefusesMore) {
    static Hold starting;
    jobs[0].lingersAfterStop = true;
    EXPECT_TRUE(Start(jobs[0]) == nullptr && Start(jobs[1]) == nullptr);
    jobs[1].Finish(); // its thread is idle now
    pool->AdjustMaxPoolSize(2);
    jobs[1].mayEnd.Reset();
    EXPECT_EQ(Start(jobs[1]), nullptr);
    pool->SetThreadsStartFunc([] { CountThread(), starting.Stay(); });
    EXPECT_EQ(Start(jobs[2]), nullptr);
    starting.WaitUntilReached(); // it has a task and has not begun
    EXPECT_TRUE(pool->AppCanExit() && pool->AppCanExit());
    jobs[0].linger.WaitUntilReached();
    Job refused;
    refused.done.Signal();
    EXPECT_EQ(Start(refused), nullptr);
    EXPECT_FALSE(refused.Runs()) << "the done event stays as it was";
    pool.reset(); // does not wait, and the threads outlive it
    EXPECT_TRUE(jobs[0].Runs() && jobs[2].Runs());
    jobs[0].linger.Release();
    starting.Release();
    for (Job& job : jobs) {
        WaitUntil([&] { return !job.Runs(); });
        EXPECT_TRUE(job.wasStopped);
    }
    EXPECT_TRUE(jobs[2].foundStopped);
}

TEST_F(ThreadPoolTest, DestructorStopsTheTasksAndWaitsForThem) {
    jobs[0].lingersAfterStop = true;
    EXPECT_TRUE(Start(jobs[0]) == nullptr && Start(jobs[1]) == nullptr);
    std::jthread const releaser([&] {
        jobs[0].linger.WaitUntilReached();
        LetOthersRun();
        jobs[0].linger.Release();
    });
    pool.reset();
    EXPECT_EQ(jobs[0].runs + jobs[1].runs, 2);
}

// Seen: after a failed allocation the pool kept a thread that was gone, or one that stayed busy for ever.
TEST_F(ThreadPoolTest, FailedStartLeavesThePoolAsItWas) {
    bool failed = true;
    for (int failing = SyncAction::possible ? 0 : 1; failed; ++failing) { // 0: the system gives no thread
        UseNewPool();
        Job job;
        job.done.Signal();
        try {
            SyncAction const noThread("Thread::StartRunning", [&] { return failing == 0; });
            failingAllocation = failing;
            ErrorInfo* const error = Start(job);
            failingAllocation = 0;
            failed = failing == 0;
            EXPECT_EQ(TakeError(error), String(failed ? u"Cannot start the thread \"pool test\"." : u""));
        } catch (std::bad_alloc const&) {
        }
        EXPECT_NE(job.Runs(), failed);
        EXPECT_EQ(failed ? Start(job) : nullptr, nullptr);
        job.Finish();
        EXPECT_EQ(job.runs, 1);
    }
}

} // namespace
} // namespace QMT
