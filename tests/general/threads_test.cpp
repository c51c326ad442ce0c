#include "qmt/general/threads.h"

#include "support/sync_action.h"
#include "support/text.h"
#include "support/this_system.h"

namespace QMT {

namespace {

// s for the start function, c for a cycle, o for OnStop, d for the destructor; to be read when the thread has
// ended.
std::string steps;

struct SetAtExit {
    ~SetAtExit() { *flag = true; }

    bool* flag;
};

// Runs three cycles; the end and the error depend on `kind`. `exited` becomes true when the system's thread
// is gone.
struct Worker : Thread {
    Worker(int kindOfEnd, Event* ended, bool* exited)
        : Thread("worker-of-sixteen", ended, exited != nullptr), kind(kindOfEnd), exitFlag(exited) {
        if (exited == nullptr)
            RegisterSelfDeletes();
        SetThreadStartFunc([] { steps += 's'; });
    }

    ~Worker() override { steps += 'd'; }

    ErrorInfo* RunCycle(bool& finished) override {
        if (exitFlag != nullptr)
            thread_local SetAtExit const setAtExit{exitFlag};
        steps += 'c';
        if (steps != "sccc")
            return nullptr;
        shownName = ShownThreadName();
        finished = kind == 0;
        ErrorInfo* const error = finished ? nullptr : MakeError(u"trouble");
        return kind == 2 ? throw error : error;
    }

    void OnStop(ErrorInfo* error) override {
        steps += error == nullptr ? 'o' : 'e';
        Thread::OnStop(error);
    }

    static inline std::string shownName;
    int kind;
    bool* exitFlag;
};

TEST(Thread, RunsItsStepsInOrderHoweverItEnds) {
    Event ended(true);
    SVArray<Event*, Event*> events;
    events.Add(&ended);
    DebugOutput output;
    for (int round = 0; round < 600; ++round, ended.Reset()) {
        bool exited = false;
        bool const selfDeletes = round % 2 == 0;
        steps.clear();
        auto* const worker = new Worker(round % 3, &ended, selfDeletes ? nullptr : &exited);
        EXPECT_EQ(TakeError(worker->StartRunning()), u"");
        WaitOnEvents(events, -1);
        if (!selfDeletes) {
            EXPECT_EQ(TakeError(worker->StartRunning()),
                      u"Cannot start the thread \"worker-of-sixteen\". It has been started before.");
            delete worker;
        }
        EXPECT_TRUE(steps == (round % 3 == 0 ? "scccod" : "sccced") && exited != selfDeletes) << steps;
    }
    EXPECT_EQ(output.Take().size(), 400 * std::string("trouble\n").size());
    if (Worker::shownName.empty())
        GTEST_SKIP() << "the system shows no names of threads";
    EXPECT_TRUE(Worker::shownName == "worker-of-sixteen" || Worker::shownName == "worker-of-sixte")
        << Worker::shownName;
}

TEST(Thread, StaysWithItsOwnerAndRunsNothingWhenTheStartFails) {
    if (!SyncAction::possible)
        GTEST_SKIP() << "built without sync points";
    SyncAction const failure("Thread::StartRunning", [] { return true; });
    Event ended(true);
    steps.clear();
    {
        Worker worker(0, &ended, nullptr);
        EXPECT_EQ(TakeError(worker.StartRunning()), u"Cannot start the thread \"worker-of-sixteen\".");
    }
    EXPECT_TRUE(steps == "d" && !EventSignalled(ended)) << steps;
}

} // namespace

} // namespace QMT
