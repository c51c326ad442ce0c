#include "chain/pool_thread.h"

#include <utility>

#include "general/sync_point.h"
#include "qmt/diagnostics/error_log.h"

namespace QMT {

namespace {

constexpr int stopIndex = 0;

} // namespace

PoolThread::PoolThread(char const* name, std::shared_ptr<PoolCore> poolCore)
    : Thread(name, nullptr, false), core(std::move(poolCore)) {
    RegisterSelfDeletes();
    waitEvents.Add(&stopEvent);
    waitEvents.Add(&runEvent);
}

bool PoolThread::IsIdle() const {
    CritSectionLock const lock(&core->section);
    return !busy && !retired;
}

bool PoolThread::AssignTask(String const& name, PoolTask newTask, void* argument, Event* taskDone) {
    CritSectionLock const lock(&core->section);
    if (busy || retired)
        return false;
    taskName = name; // may fail, and the thread is then still idle
    busy = true;
    task = newTask;
    taskArgument = argument;
    doneEvent = taskDone;
    if (doneEvent != nullptr)
        doneEvent->Reset();
    runEvent.Signal();
    return true;
}

void PoolThread::Retire() {
    CritSectionLock const lock(&core->section);
    retired = true;
    stopEvent.Signal();
}

ErrorInfo* PoolThread::RunCycle(bool& finished) {
    if (WaitOnEvents(waitEvents, -1) == stopIndex) {
        Wish const wish = OnStopSignal();
        finished = wish == Wish::End;
        if (wish != Wish::RunTask)
            return nullptr;
    }
    RunTask();
    QMT_SYNC_POINT("PoolThread: task has returned");
    finished = FinishTask();
    return nullptr;
}

// A task has no result: an error that it lets out ends in the log.
void PoolThread::RunTask() {
    try {
        task(taskArgument, &stopEvent);
    } catch (ErrorInfo* error) {
        LogAndResetError(error);
    }
}

// A stop that was meant for a task may come when the task has just returned. It must not end a thread that
// the pool still offers tasks to. A task that was assigned just before the thread was retired is run all the
// same, with its stop event signalled, so that its done event comes.
PoolThread::Wish PoolThread::OnStopSignal() {
    CritSectionLock const lock(&core->section);
    if (retired)
        return busy ? Wish::RunTask : Wish::End;
    stopEvent.Reset();
    return Wish::GoOn;
}

bool PoolThread::FinishTask() {
    CritSectionLock const lock(&core->section);
    stopEvent.Reset();
    runEvent.Reset();
    busy = false;
    if (Event* const done = std::exchange(doneEvent, nullptr))
        done->Signal();
    return retired;
}

void PoolThread::OnStop(ErrorInfo* error) {
    core->liveThreads.Reset();
    Thread::OnStop(error);
}

} // namespace QMT
