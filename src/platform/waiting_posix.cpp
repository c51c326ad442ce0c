#include "platform/waiting_system.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <climits>
#include <ctime>
#include <thread>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace QMT::platform {

#if defined(__linux__)

namespace {

timespec ToTimespec(std::chrono::steady_clock::time_point moment) {
    auto const sinceStart = moment.time_since_epoch();
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceStart);
    return {static_cast<time_t>(seconds.count()),
            static_cast<long>(std::chrono::nanoseconds(sinceStart - seconds).count())};
}

long WaitOnWord(WaitWord const& wait, timespec const* deadline) {
    return syscall(SYS_futex, wait.word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, wait.expected, deadline,
                   nullptr, FUTEX_BITSET_MATCH_ANY);
}

#if defined(SYS_futex_waitv)

long WaitOnWords(std::span<WaitWord const> words, timespec const* deadline) {
    std::array<futex_waitv, maxVectoredWords> waiters;
    for (std::size_t i = 0; i < words.size(); ++i) {
        waiters[i] = {};
        waiters[i].val = words[i].expected;
        waiters[i].uaddr = reinterpret_cast<std::uintptr_t>(words[i].word);
        waiters[i].flags = FUTEX_32 | FUTEX_PRIVATE_FLAG;
    }
    return syscall(SYS_futex_waitv, waiters.data(), words.size(), 0, deadline, CLOCK_MONOTONIC);
}

#else

long WaitOnWords(std::span<WaitWord const>, timespec const*) {
    return -1;
}

#endif

} // namespace

bool SystemWaitsOnWord() {
    return true;
}

bool SystemWaitsOnWords() {
#if defined(SYS_futex_waitv)
    // An empty vector is refused by a kernel that knows the call.
    return syscall(SYS_futex_waitv, nullptr, 0, 0, nullptr, CLOCK_MONOTONIC) == -1 && errno == EINVAL;
#else
    return false;
#endif
}

bool SystemSleepOnWords(std::span<WaitWord const> words, WaitDeadline const& deadline) {
    timespec time{};
    timespec const* timePointer = nullptr;
    if (deadline) {
        time = ToTimespec(*deadline);
        timePointer = &time;
    }
    long const result =
        words.size() == 1 ? WaitOnWord(words[0], timePointer) : WaitOnWords(words, timePointer);
    return !(result == -1 && errno == ETIMEDOUT);
}

void SystemWake(Word& word) {
    syscall(SYS_futex, &word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, INT_MAX, nullptr, nullptr, 0);
}

#else

bool SystemWaitsOnWord() {
    return false;
}

bool SystemWaitsOnWords() {
    return false;
}

bool SystemSleepOnWords(std::span<WaitWord const>, WaitDeadline const&) {
    return true;
}

void SystemWake(Word&) {}

#endif

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
