// The worker of a thread pool.
#pragma once

#include <memory>

#include "qmt/general/events.h"
#include "qmt/general/string.h"
#include "qmt/general/threads.h"

namespace QMT {

// What a pool shares with its threads. A thread that outlives its pool still finds it there.
struct PoolCore {
    CritSection section{"ThreadPool::poolSection"};
    CountingSemaphore liveThreads{nullptr, 0}; // one count for each thread that has not ended
};

using PoolTask = void (*)(void* argument, Event* stopEvent);

// A thread of a pool: idle, busy with one task, or retired, that is told to end. After it has ended it
// deletes itself.
//
// The pool calls the public operations only for a thread on its list, and holds the section over a row of
// them; each enters it once more.
class PoolThread : public Thread {
public:
    PoolThread(char const* name, std::shared_ptr<PoolCore> poolCore);

    bool IsIdle() const;

    // Gives the thread a task; false when it is not idle. Resets `taskDone` before the task can end.
    bool AssignTask(String const& name, PoolTask newTask, void* argument, Event* taskDone);

    // Ends the thread, once its task has returned, if it has one; the task sees its stop event signalled. The
    // pool forgets the thread now.
    void Retire();

protected:
    void OnStop(ErrorInfo* error) override;
    ErrorInfo* RunCycle(bool& finished) override;

private:
    enum class Wish { GoOn, End, RunTask };

    void RunTask();
    Wish OnStopSignal();
    bool FinishTask();

    // Shared with the pool and alive for as long as either is.
    std::shared_ptr<PoolCore> const core;
    Event runEvent{true};  // a task has been assigned
    Event stopEvent{true}; // the task, or the idle thread, is to end
    SVArray<Event*, Event*> waitEvents;
    bool busy QMT_GUARDED_BY(core->section) = false;
    bool retired QMT_GUARDED_BY(core->section) = false;

    // Written before `runEvent` is signalled and read after.
    Event* doneEvent = nullptr;
    PoolTask task = nullptr;
    String taskName;
    void* taskArgument = nullptr;
};

} // namespace QMT
