#include "platform/waiting.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <climits>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <new>
#include <thread>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace QMT::platform {

namespace {

using Word = std::atomic<std::uint32_t>;

bool HasPassed(WaitDeadline const& deadline) {
    return deadline && std::chrono::steady_clock::now() >= *deadline;
}

bool AllAsExpected(std::span<WaitWord const> words) {
    return std::ranges::all_of(words,
                               [](WaitWord const& wait) { return wait.word->load() == wait.expected; });
}

#if defined(__linux__)

timespec ToTimespec(std::chrono::steady_clock::time_point moment) {
    auto const sinceStart = moment.time_since_epoch();
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceStart);
    return {static_cast<time_t>(seconds.count()),
            static_cast<long>(std::chrono::nanoseconds(sinceStart - seconds).count())};
}

long SystemWaitOnWord(Word& word, std::uint32_t expected, timespec const* deadline) {
    return syscall(SYS_futex, &word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, expected, deadline, nullptr,
                   FUTEX_BITSET_MATCH_ANY);
}

void SystemWake(Word& word) {
    syscall(SYS_futex, &word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, INT_MAX, nullptr, nullptr, 0);
}

#if defined(SYS_futex_waitv)

long SystemWaitOnWords(std::span<WaitWord const> words, timespec const* deadline) {
    std::array<futex_waitv, maxVectoredWords> waiters;
    for (std::size_t i = 0; i < words.size(); ++i) {
        waiters[i] = {};
        waiters[i].val = words[i].expected;
        waiters[i].uaddr = reinterpret_cast<std::uintptr_t>(words[i].word);
        waiters[i].flags = FUTEX_32 | FUTEX_PRIVATE_FLAG;
    }
    return syscall(SYS_futex_waitv, waiters.data(), words.size(), 0, deadline, CLOCK_MONOTONIC);
}

bool SystemWaitsOnWords() {
    // An empty vector is refused by a kernel that knows the call.
    return syscall(SYS_futex_waitv, nullptr, 0, 0, nullptr, CLOCK_MONOTONIC) == -1 && errno == EINVAL;
}

#else

long SystemWaitOnWords(std::span<WaitWord const>, timespec const*) {
    return -1;
}

bool SystemWaitsOnWords() {
    return false;
}

#endif

bool SystemWaitsOnWord() {
    return true;
}

bool SleepVectored(std::span<WaitWord const> words, WaitDeadline const& deadline) {
    timespec time{};
    timespec const* timePointer = nullptr;
    if (deadline) {
        time = ToTimespec(*deadline);
        timePointer = &time;
    }
    long const result = words.size() == 1 ? SystemWaitOnWord(*words[0].word, words[0].expected, timePointer)
                                          : SystemWaitOnWords(words, timePointer);
    return !(result == -1 && errno == ETIMEDOUT);
}

void SleepOnEpochWord(Word& epoch, std::uint32_t seen, WaitDeadline const& deadline) {
    WaitWord const wait{&epoch, seen};
    SleepVectored({&wait, 1}, deadline);
}

#else

bool SystemWaitsOnWords() {
    return false;
}

bool SystemWaitsOnWord() {
    return false;
}

void SystemWake(Word&) {}

bool SleepVectored(std::span<WaitWord const>, WaitDeadline const&) {
    return true;
}

void SleepOnEpochWord(Word&, std::uint32_t, WaitDeadline const&) {}

#endif

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
    std::uint32_t const seen = shared.epoch.load();
    if (AllAsExpected(words))
        SleepOnEpochWord(shared.epoch, seen, deadline);
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
    return SleepVectored(words, deadline);
}

void WakeSleepers(Word& word) {
    if (CurrentWaitBackend() == WaitBackend::Vectored)
        SystemWake(word);
    AdvanceEpoch();
}

void YieldThread() {
    sched_yield();
}

void RelaxProcessor() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

unsigned int ProcessorCount() {
#if defined(__linux__)
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
        return static_cast<unsigned int>(std::max(1, CPU_COUNT(&allowed)));
#endif
    return std::max(1u, std::thread::hardware_concurrency());
}

} // namespace QMT::platform
