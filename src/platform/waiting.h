// Sleeping until one of several 32-bit words changes, and waking those who sleep on a word.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "qmt/export.h"

namespace QMT::platform {

struct WaitWord {
    std::atomic<std::uint32_t>* word;
    std::uint32_t expected;
};

using WaitDeadline = std::optional<std::chrono::steady_clock::time_point>;

// Sleeps while every word holds its expected value, until one of them is woken or the deadline has passed.
// It may also return for no reason: the caller looks at his words again. Returns false when the deadline has
// passed. A change of a word by a sequentially consistent operation that is followed by `WakeSleepers` on
// that word is never missed. Allocates nothing.
bool SleepOnWords(std::span<WaitWord const> words, WaitDeadline deadline);

// Wakes all that sleep on `word`. It uses the address only: the word may be gone by now.
void WakeSleepers(std::atomic<std::uint32_t>& word);

// Gives the rest of this thread's time slice to another thread that is ready, if there is one.
void YieldThread();

// Tells the processor that this is a spin loop.
void RelaxProcessor();

// How many threads can run at once; at least 1.
unsigned int ProcessorCount();

// The ways to sleep. All of them work on one system, for tests, as far as the system has them.
enum class WaitBackend {
    Vectored,  // the system's wait on several words at once
    Epoch,     // one process-wide word that every wake-up advances; all sleepers look again
    Condition, // as Epoch, with a mutex and a condition variable of the language's library
};

// The way in use: the best that the system has, unless a test has forced another.
QMT_GENU_API WaitBackend CurrentWaitBackend();

// Forces a way to sleep; false, and nothing changed, when the system does not have it. Nobody may sleep on an
// event while it is called.
QMT_GENU_API bool ForceWaitBackend(WaitBackend backend);

// The largest number of words that the vectored wait takes; more are waited for through the epoch.
inline constexpr std::size_t maxVectoredWords = 128;

} // namespace QMT::platform
