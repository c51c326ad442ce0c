#include "qmt/chain/thread_pool.h"

#include <chrono>
#include <utility>

#include "chain/pool_thread.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestWaitForThreads{10};
constexpr unsigned int millisecondsBetweenLooks = 1;

void WaitForThreads(CountingSemaphore& liveThreads) {
    auto const end = Clock::now() + longestWaitForThreads;
    while (EventSignalled(liveThreads) && Clock::now() < end)
        MS_Sleep(millisecondsBetweenLooks);
}

} // namespace

ThreadPool::ThreadPool(char const* name, std::size_t maxSize)
    : poolName(name), core(std::make_shared<PoolCore>()), maxPoolSize(maxSize) {}

ThreadPool::~ThreadPool() {
    {
        CritSectionLock const lock(&core->section);
        if (threads.Size() == 0)
            return;
        while (threads.Size() > 0)
            RetireThread(threads.Size() - 1);
    }
    WaitForThreads(core->liveThreads);
}

ErrorInfo* ThreadPool::RunTask(String name, PoolTask task, void* argument, Event* doneEvent) {
    CritSectionLock const lock(&core->section);
    if (exiting)
        return nullptr;
    if (!OfferToThreads(name, task, argument, doneEvent))
        return RunOnNewThread(std::move(name), task, argument, doneEvent);
    RetireSurplusThreads();
    return nullptr;
}

bool ThreadPool::OfferToThreads(String const& name, PoolTask task, void* argument, Event* doneEvent) {
    for (std::size_t i = 0; i < threads.Size(); ++i)
        if (threads[i]->AssignTask(name, task, argument, doneEvent))
            return true;
    return false;
}

// The thread is on the list before it runs, so that an allocation that fails cannot leave one that nobody
// knows of.
ErrorInfo* ThreadPool::RunOnNewThread(String name, PoolTask task, void* argument, Event* doneEvent) {
    auto owned = std::make_unique<PoolThread>(PoolName(), core);
    owned->SetThreadStartFunc(threadsStartFunc.load());
    threads.Add(owned.get());
    core->liveThreads.Signal();
    ErrorInfo* error = nullptr;
    try {
        error = owned->StartRunning();
    } catch (...) {
        ForgetNewThread();
        throw;
    }
    if (error != nullptr) {
        ForgetNewThread();
        return error;
    }
    owned.release()->AssignTask(name, task, argument, doneEvent);
    return nullptr;
}

void ThreadPool::ForgetNewThread() {
    core->liveThreads.Reset();
    threads.Remove(threads.Size() - 1);
}

void ThreadPool::RetireSurplusThreads() {
    while (threads.Size() > maxPoolSize.load(std::memory_order_relaxed)) {
        int const idle = FindIdleThread();
        if (idle < 0)
            return;
        RetireThread(static_cast<std::size_t>(idle));
    }
}

int ThreadPool::FindIdleThread() const {
    for (std::size_t i = 0; i < threads.Size(); ++i)
        if (threads[i]->IsIdle())
            return static_cast<int>(i);
    return -1;
}

void ThreadPool::RetireThread(std::size_t index) {
    threads[index]->Retire();
    threads.Remove(index);
}

bool ThreadPool::AppCanExit() {
    CritSectionLock const lock(&core->section);
    while (threads.Size() > 0)
        RetireThread(0);
    exiting = true;
    return true;
}

} // namespace QMT
