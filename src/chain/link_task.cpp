#include "chain/link_task.h"

#include <utility>

#include "general/event_access.h"
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

LinkTask::LinkTask(char const* semaphoreName, char16_t const* nameOfTask, TaskFunction taskFunction,
                   void* argument)
    : processSemaphore(semaphoreName, 0), taskName(nameOfTask), function(taskFunction), link(argument) {
    taskEnded.Signal();
    taskEndedOnly.Add(&taskEnded);
}

// The second look is for a stop that has come between: if it has dropped this count, as stops do, all is
// done; if it was past that, the count wants a new task.
void LinkTask::Notify() {
    if (!running.load())
        Start();
    QMT_SYNC_POINT("LinkTask::Notify: before the signal");
    processSemaphore.Signal();
    if (!running.load() && EventSignalled(processSemaphore))
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
    try {
        return ThreadPoolOfLinks()->RunTask(taskName, function, link, &taskEnded);
    } catch (...) {
        running = false;
        throw;
    }
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
    if (!gate.Pass(stopEvent) || !WaitForCount(stopEvent))
        return false;
    // In this order: whoever sees the counts gone also sees the cycle begun.
    inCycle.store(true, std::memory_order_relaxed);
    std::uint32_t counts = countsAtHand.load(std::memory_order_relaxed);
    if (counts == 0)
        counts = TakeAllCounts();
    countsAtHand.store(counts - 1, std::memory_order_relaxed);
    return true;
}

std::uint32_t LinkTask::TakeAllCounts() {
    std::uint32_t const counts = EventAccess::TakeAll(processSemaphore);
    countsTaken.Add(counts);
    return counts;
}

std::uint32_t LinkTask::CountsWaiting() {
    return EventAccess::Count(EventAccess::WordOf(processSemaphore).load(std::memory_order_relaxed));
}

bool LinkTask::WaitForCount(Event* stopEvent) {
    if (countsAtHand.load(std::memory_order_relaxed) > 0)
        return !EventSignalled(*stopEvent);
    return WaitOnEvents(waitEvents, -1) != stopIndex;
}

void LinkTask::End() {
    QMT_SYNC_POINT("LinkTask::End");
    CritSectionLock const lock(&section);
    TaskContext::OfThisThread() = {};
    inCycle = false;
    waitEvents.RemoveAll();
    TakeAllCounts();
    countsAtHand = 0;
    if (!stopping)
        running = false;
}

bool LinkTask::Stop() {
    CritSectionLock const oneAtATime(&stopSection);
    if (!RequestStop())
        return false;
    WaitForTaskEnd();
    QMT_SYNC_POINT("LinkTask::Stop: the task has ended");
    if (FinishStop())
        Start();
    return true;
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
    TakeAllCounts();
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
    bool const isCounted = EventSignalled(processSemaphore);
    if (inCycle.load(std::memory_order_acquire))
        return true;
    bool const hasCount = isCounted || countsAtHand.load(std::memory_order_relaxed) > 0;
    return hasCount && !stopping && gate.IsOpen();
}

} // namespace QMT
