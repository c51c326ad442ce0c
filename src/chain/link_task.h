// The task of an internal link: its start, its loop and its stop.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "chain/party_gate.h"
#include "qmt/chain/tally.h"
#include "qmt/general/containers.h"
#include "qmt/general/events.h"

namespace QMT {

class ThreadPool;

// The pool that was given to `ChainLink::SetThreadPoolToUse`.
ThreadPool* ThreadPoolOfLinks();

// What internal links of either drive have in common: a task on a pool thread that works off the counts of a
// semaphore, started by the first count and again by the first count after a stop.
//
// The owner calls `Notify` for each push or pull, runs `Run` as the task, and calls `Stop` before it destroys
// the object; `Stop` also sees to it that a task which the pool has ended is gone.
//
// Start, the two ends of the task and the stop's signal share one section. `Notify` takes it only to start.
class LinkTask {
public:
    using TaskFunction = void (*)(void* link, Event* stopEvent);

    // `link` goes to `function` as it is. The names are not copied.
    LinkTask(char const* semaphoreName, char16_t const* nameOfTask, TaskFunction taskFunction,
             void* argument);

    // Counts one push or pull and starts the task if it does not run.
    void Notify();

    // The task: calls `doOneCycle()` for each count until it is stopped.
    template <typename Cycle>
    void Run(Event* stopEvent, Cycle doOneCycle);

    // Ends the task and drops the counts. Returns when the pool has finished with the task. False, and
    // nothing more was done, when the task did not run.
    bool Stop();

    // For a link that is a party of a parallel stage.
    PartyGate& Gate() { return gate; }

    // Pushes and pulls that the task has taken up or a stop has dropped, and those that wait for it. From any
    // thread.
    std::uint64_t CountsTaken() const { return countsTaken.Get(); }

    std::uint32_t CountsWaiting();

    // Begins `CountsTaken` anew. While there is no task.
    void ZeroCounts() { countsTaken.Zero(); }

    // Whether this task, left alone, does another cycle or finishes the one it is in. Looked at from the
    // thread of the stage while a stop is under way.
    bool WillDoItsShare();

private:
    bool Begin(Event* stopEvent);
    bool TakeCount(Event* stopEvent);
    bool WaitForCount(Event* stopEvent);
    std::uint32_t TakeAllCounts();
    void End();

    void Start();
    ErrorInfo* StartUnderLock() QMT_REQUIRES(section);
    bool RequestStop();
    bool FinishStop();
    void WaitForTaskEnd();

    // What those who push touch lies apart from what the task touches in every cycle, or each would keep
    // taking the cache line from the other.
    static constexpr std::size_t cacheLine = 64;

    // A task has been asked for and has not ended. While a stop is under way only the stop clears it: a push
    // that saw it false would start a second task, whose wait array the stop would then empty.
    alignas(cacheLine) std::atomic<bool> running{false};
    std::atomic<bool> stopping{false};

    CountingSemaphore processSemaphore;

    // The stop event, then the semaphore; empty when no task waits.
    alignas(cacheLine) SVArray<Event*, Event*> waitEvents;
    Event taskEnded{true}; // signalled also before the first task
    SVArray<Event*, Event*> taskEndedOnly;
    CritSection section{"LinkTask"};
    CritSection stopSection{"LinkTask: stop"}; // one stop at a time

    PartyGate gate;
    std::atomic<bool> inCycle{false};

    // Counts that the task has taken off the semaphore, all it found at a time, and has not used yet.
    std::atomic<std::uint32_t> countsAtHand{0};
    Tally countsTaken; // by the task, and under the section when there is none

    char16_t const* taskName;
    TaskFunction function;
    void* link;
};

// What a task's thread knows of itself while it runs the cycles of a link, and of the links that are coupled
// behind it.
struct TaskContext {
    Event* stopEvent = nullptr;
    PartyGate* gate = nullptr;

    // That of the calling thread; empty on a thread without a task.
    static TaskContext& OfThisThread();
};

template <typename Cycle>
void LinkTask::Run(Event* stopEvent, Cycle doOneCycle) {
    // Also when a cycle throws; the pool logs the error, and the next count starts the task again.
    struct Ending {
        ~Ending() { task.End(); }

        LinkTask& task;
    } const ending{*this};

    if (!Begin(stopEvent))
        return;
    while (TakeCount(stopEvent)) {
        doOneCycle();
        inCycle.store(false, std::memory_order_release);
    }
}

} // namespace QMT
