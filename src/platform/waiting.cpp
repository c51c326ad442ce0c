// The choice among the ways to sleep, and those of them that need little of the system.
#include "platform/waiting.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <new>

#include "platform/waiting_system.h"

namespace QMT::platform {

namespace {

// What those share who cannot sleep on their own words. A sleeper counts itself before it looks at its words;
// a waker changes a word before it looks at the count: one of the two always sees the other.
struct SharedEpoch {
    Word epoch{0};
    std::atomic<int> sleepers{0};
    std::mutex mutex;
    std::condition_variable advanced;
};

SharedEpoch& Shared() {
    // Never destroyed: threads may still wait while the process ends. Not on the heap: the first call may
    // come from a real-time thread that wakes another.
    alignas(SharedEpoch) static unsigned char place[sizeof(SharedEpoch)];
    static SharedEpoch& shared = *::new (static_cast<void*>(place)) SharedEpoch;
    return shared;
}

bool SleepOnEpoch(std::span<WaitWord const> words, WaitDeadline const& deadline) {
    SharedEpoch& shared = Shared();
    shared.sleepers.fetch_add(1);
    WaitWord const wait{&shared.epoch, shared.epoch.load()};
    if (AllAsExpected(words))
        SystemSleepOnWords({&wait, 1}, deadline);
    shared.sleepers.fetch_sub(1);
    return !HasPassed(deadline);
}

bool SleepOnCondition(std::span<WaitWord const> words, WaitDeadline const& deadline) {
    SharedEpoch& shared = Shared();
    shared.sleepers.fetch_add(1);
    {
        std::unique_lock lock(shared.mutex);
        std::uint32_t const seen = shared.epoch.load();
        if (AllAsExpected(words)) {
            auto const hasAdvanced = [&] { return shared.epoch.load() != seen; };
            if (deadline)
                shared.advanced.wait_until(lock, *deadline, hasAdvanced);
            else
                shared.advanced.wait(lock, hasAdvanced);
        }
    }
    shared.sleepers.fetch_sub(1);
    return !HasPassed(deadline);
}

WaitBackend BestBackend() {
    if (SystemWaitsOnWords())
        return WaitBackend::Vectored;
    return SystemWaitsOnWord() ? WaitBackend::Epoch : WaitBackend::Condition;
}

std::atomic<WaitBackend>& Backend() {
    static std::atomic<WaitBackend> backend{BestBackend()};
    return backend;
}

bool SystemHas(WaitBackend backend) {
    switch (backend) {
    case WaitBackend::Vectored:
        return SystemWaitsOnWords();
    case WaitBackend::Epoch:
        return SystemWaitsOnWord();
    case WaitBackend::Condition:
        return true;
    }
    return false;
}

void AdvanceEpoch() {
    SharedEpoch& shared = Shared();
    if (shared.sleepers.load() == 0)
        return;
    if (CurrentWaitBackend() == WaitBackend::Condition) {
        std::scoped_lock const lock(shared.mutex);
        shared.epoch.fetch_add(1);
        shared.advanced.notify_all();
    } else {
        shared.epoch.fetch_add(1);
        SystemWake(shared.epoch);
    }
}

} // namespace

bool AllAsExpected(std::span<WaitWord const> words) {
    return std::ranges::all_of(words,
                               [](WaitWord const& wait) { return wait.word->load() == wait.expected; });
}

bool HasPassed(WaitDeadline const& deadline) {
    return deadline && std::chrono::steady_clock::now() >= *deadline;
}

WaitBackend CurrentWaitBackend() {
    return Backend().load(std::memory_order_relaxed);
}

bool ForceWaitBackend(WaitBackend backend) {
    if (!SystemHas(backend))
        return false;
    Backend().store(backend);
    return true;
}

bool SleepOnWords(std::span<WaitWord const> words, WaitDeadline deadline) {
    WaitBackend const backend = CurrentWaitBackend();
    if (backend == WaitBackend::Condition)
        return SleepOnCondition(words, deadline);
    if (backend == WaitBackend::Epoch || words.size() > maxVectoredWords)
        return SleepOnEpoch(words, deadline);
    return SystemSleepOnWords(words, deadline);
}

void WakeSleepers(Word& word) {
    if (CurrentWaitBackend() == WaitBackend::Vectored)
        SystemWake(word);
    AdvanceEpoch();
}

} // namespace QMT::platform
