#include "chain/link_task.h"

#include <utility>

#include "general/sync_point.h"
#include "qmt/chain/thread_pool.h"
#include "qmt/diagnostics/error_log.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

constexpr int stopIndex = 0;

} // namespace

TaskContext& TaskContext::OfThisThread() {
    thread_local TaskContext context;
    return context;
}

LinkTask::LinkTask(char const* semaphoreName, CodeUnit const* nameOfTask, TaskFunction taskFunction,
                   void* argument)
    : processSemaphore(semaphoreName, 0), taskName(nameOfTask), function(taskFunction), link(argument) {
    taskEnded.Signal();
    taskEndedOnly.Add(&taskEnded);
}

// The second look makes up for a stop that has dropped this count between the first look and the signal.
void LinkTask::Notify() {
    if (!running.load())
        Start();
    QMT_SYNC_POINT("LinkTask::Notify: before the signal");
    processSemaphore.Signal();
    if (!running.load())
        Start();
}

void LinkTask::Start() {
    ErrorInfo* error = nullptr;
    {
        CritSectionLock const lock(&section);
        if (!running)
            error = StartUnderLock();
    }
    if (error != nullptr)
        LogAndResetError(error);
}

// Under the section, so that a stop finds either no task, or one that the pool has taken over or refused: it
// resets `taskEnded` only when it has assigned the task, and a refusal leaves it signalled. The thread of an
// earlier task that the pool has ended must have signalled it before.
ErrorInfo* LinkTask::StartUnderLock() {
    WaitForTaskEnd();
    running = true;
    QMT_SYNC_POINT("LinkTask::Start: before RunTask");
    return ThreadPoolOfLinks()->RunTask(taskName, function, link, &taskEnded);
}

bool LinkTask::Begin(Event* stopEvent) {
    QMT_SYNC_POINT("LinkTask::Begin");
    CritSectionLock const lock(&section);
    if (stopping)
        return false;
    waitEvents.Add(stopEvent);
    waitEvents.Add(&processSemaphore);
    TaskContext::OfThisThread() = {stopEvent, &gate};
    return true;
}

bool LinkTask::TakeCount(Event* stopEvent) {
    if (!gate.Pass(stopEvent) || WaitOnEvents(waitEvents, -1) == stopIndex)
        return false;
    // In this order: whoever sees the count gone also sees the cycle begun.
    inCycle.store(true, std::memory_order_relaxed);
    processSemaphore.Reset();
    return true;
}

void LinkTask::End() {
    QMT_SYNC_POINT("LinkTask::End");
    CritSectionLock const lock(&section);
    TaskContext::OfThisThread() = {};
    waitEvents.RemoveAll();
    processSemaphore.ForceReset();
    if (!stopping)
        running = false;
}

void LinkTask::Stop() {
    CritSectionLock const oneAtATime(&stopSection);
    if (!RequestStop())
        return;
    WaitForTaskEnd();
    QMT_SYNC_POINT("LinkTask::Stop: the task has ended");
    if (FinishStop())
        Start();
}

// False when there is no task to stop; the thread of the last one is then past its last touch of the link.
bool LinkTask::RequestStop() {
    CritSectionLock const lock(&section);
    if (!running) {
        WaitForTaskEnd();
        return false;
    }
    stopping = true;
    if (waitEvents.Size() > 0)
        std::as_const(waitEvents)[stopIndex]->Signal();
    return true;
}

// True when a push has come after the counts were dropped, by somebody who still saw the task running.
bool LinkTask::FinishStop() {
    CritSectionLock const lock(&section);
    processSemaphore.ForceReset();
    QMT_SYNC_POINT("LinkTask::Stop: the counts are dropped");
    stopping = false;
    running = false;
    return EventSignalled(processSemaphore);
}

void LinkTask::WaitForTaskEnd() {
    WaitOnEvents(taskEndedOnly, -1);
}

bool LinkTask::WillDoItsShare() {
    // Not `running`, which is also set when the pool has refused the task.
    if (EventSignalled(taskEnded))
        return false;
    bool const hasCount = EventSignalled(processSemaphore);
    return inCycle.load(std::memory_order_acquire) || (hasCount && !stopping && gate.IsOpen());
}

} // namespace QMT
