// Reusable threads for long-lived tasks.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/events.h"
#include "qmt/general/string.h"

namespace QMT {

class PoolThread;
struct PoolCore;

// Runs tasks on threads of its own and keeps the threads for further tasks.
//
// The caller gives the pool tasks with `RunTask`, from any thread, and sees to it that every task ends when
// its stop event is signalled. He destroys the pool on one thread, when no `RunTask` can come any more.
//
// A task never waits for a thread: if none is idle a new one is started, however many there are. The size of
// the pool only decides how many idle ones are kept.
//
//     ThreadPool pool("audio", 8);
//     Event done(true);
//     if (ErrorInfo* error = pool.RunTask(u"meter", &RunMeter, &meter, &done)) return error;
class QMT_UTILU_API ThreadPool {
public:
    // A pool without threads. `name` is given to each new thread; it is not copied and must outlive the pool
    // and its threads.
    ThreadPool(char const* name, std::size_t maxPoolSize);

    // Retires all threads and waits until they have ended, at most 10 seconds; a thread whose task ignores
    // its stop event for longer is abandoned and touches nothing of the pool any more. After `AppCanExit` it
    // does not wait.
    ~ThreadPool();
    ThreadPool(ThreadPool const&) = delete;
    ThreadPool& operator=(ThreadPool const&) = delete;

    // Runs `task(argument, stopEvent)` on a thread of the pool and returns at once. `name` is for diagnosis.
    //
    // The task returns when `stopEvent` is signalled, by the pool or by whoever the task has given it to.
    // `doneEvent`, which may be null and stays the caller's, is reset before this call returns and signalled
    // after the task has returned; it may be destroyed by whoever has seen it signalled. What the caller did
    // before the call is seen by the task, and what the task did by whoever sees `doneEvent` signalled.
    //
    // The error of a thread that could not be started is the caller's to delete; the pool and `doneEvent`
    // are then as before. After `AppCanExit` the task does not run, and the result is null all the same, with
    // `doneEvent` as it was. Takes the pool's section; may allocate and start a thread, so it is not for a
    // real-time thread.
    ErrorInfo* RunTask(String name, void (*task)(void*, Event*), void* argument, Event* doneEvent);

    // Tells every thread, and so every task, to end, and refuses further tasks. Does not wait. Always true.
    bool AppCanExit();

    // How many threads to keep: those idle beyond it end at the next `RunTask` that finds an idle thread. 0
    // is allowed. From any thread.
    void AdjustMaxPoolSize(std::size_t size) { maxPoolSize.store(size, std::memory_order_relaxed); }

    // Names the threads that are created from now on; as for the constructor's name. From any thread.
    void AdjustPoolName(char const* name) { poolName.store(name, std::memory_order_release); }

    char const* PoolName() const { return poolName.load(std::memory_order_acquire); }

    // A function that each thread created from now on runs once at its start, to set its priority for
    // example; null for none. From any thread.
    void SetThreadsStartFunc(void (*function)()) { threadsStartFunc.store(function); }

private:
    bool OfferToThreads(String const& name, void (*task)(void*, Event*), void* argument, Event* doneEvent);
    ErrorInfo* RunOnNewThread(String name, void (*task)(void*, Event*), void* argument, Event* doneEvent);
    void ForgetNewThread();
    void RetireSurplusThreads();
    int FindIdleThread() const;
    void RetireThread(std::size_t index);

    std::atomic<char const*> poolName;
    std::shared_ptr<PoolCore> core; // its section guards `threads` and `exiting`
    SVArray<PoolThread*, PoolThread*> threads;
    bool exiting = false;
    std::atomic<std::size_t> maxPoolSize;
    std::atomic<void (*)()> threadsStartFunc{nullptr};
};

} // namespace QMT
