// The program's own allocation and lock functions stand in front of those of the C library. System calls are
// caught by the kernel's user dispatch: on a thread that has it switched on each one raises a signal, whose
// handler counts the call and makes it in the thread's place.
#include "support/path_counters.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace QMT {
namespace {

std::atomic<bool> windowIsOpen{false};
std::atomic<long> allocations, locks, systemCalls;

thread_local char selector = SYSCALL_DISPATCH_FILTER_ALLOW;

void Count(std::atomic<long>& count) {
    if (windowIsOpen.load(std::memory_order_relaxed))
        ++count;
}

void MakeCallForThread(int, siginfo_t*, void* context) {
    selector = SYSCALL_DISPATCH_FILTER_ALLOW;
    int const savedErrno = errno;
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    auto& call = registers[REG_RAX];
    if (call != SYS_futex && call != SYS_futex_waitv && call != SYS_sched_yield && call != SYS_clock_gettime)
        Count(systemCalls);
    call = syscall(call, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX], registers[REG_R10],
                   registers[REG_R8], registers[REG_R9]);
    call = call == -1 ? -errno : call;
    errno = savedErrno;
    selector = SYSCALL_DISPATCH_FILTER_BLOCK;
}

// Gives the address of the code that returns from the handler, whose system call must pass.
std::uintptr_t InstallHandler() {
    struct sigaction action {};

    action.sa_sigaction = &MakeCallForThread;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
    std::uintptr_t installed[4] = {}; // handler, flags, returning code, mask
    syscall(SYS_rt_sigaction, SIGSYS, nullptr, installed, sizeof installed[3]);
    return installed[2];
}

} // namespace

bool CanCountPaths() {
    static std::uintptr_t const returningCode = InstallHandler();
    constexpr long longestCode = 16;
    thread_local int const result =
        prctl(PR_SET_SYSCALL_USER_DISPATCH, PR_SYS_DISPATCH_ON, returningCode, longestCode, &selector);
    return result == 0;
}

void CountThisThread() {
    if (windowIsOpen && CanCountPaths())
        selector = SYSCALL_DISPATCH_FILTER_BLOCK;
}

void OpenWindow() {
    allocations = locks = systemCalls = 0;
    windowIsOpen = true;
    CountThisThread();
}

PathCounts CloseWindow() {
    windowIsOpen = false;
    selector = SYSCALL_DISPATCH_FILTER_ALLOW;
    return {allocations, locks, systemCalls};
}

} // namespace QMT

#define QMT_IN_FRONT extern "C" __attribute__((visibility("default")))

// The C library knows its allocation functions by a second name.
#define QMT_COUNT_ALLOCATION(name, original, parameters, ...)                                                \
    extern "C" void* original parameters;                                                                    \
    QMT_IN_FRONT void* name parameters {                                                                     \
        QMT::Count(QMT::allocations);                                                                        \
        return original(__VA_ARGS__);                                                                        \
    }

QMT_COUNT_ALLOCATION(malloc, __libc_malloc, (std::size_t size), size)
QMT_COUNT_ALLOCATION(calloc, __libc_calloc, (std::size_t count, std::size_t size), count, size)
QMT_COUNT_ALLOCATION(realloc, __libc_realloc, (void* memory, std::size_t size), memory, size)
QMT_COUNT_ALLOCATION(aligned_alloc, __libc_memalign, (std::size_t alignment, std::size_t size), alignment,
                     size)

#define QMT_COUNT_LOCK(name, Lock)                                                                           \
    QMT_IN_FRONT int name(Lock* lock) noexcept {                                                             \
        static auto const original = reinterpret_cast<int (*)(Lock*)>(dlsym(RTLD_NEXT, #name));              \
        QMT::Count(QMT::locks);                                                                              \
        return original(lock);                                                                               \
    }

QMT_COUNT_LOCK(pthread_mutex_lock, pthread_mutex_t)
QMT_COUNT_LOCK(pthread_mutex_trylock, pthread_mutex_t)
QMT_COUNT_LOCK(pthread_rwlock_rdlock, pthread_rwlock_t)
QMT_COUNT_LOCK(pthread_rwlock_wrlock, pthread_rwlock_t)
