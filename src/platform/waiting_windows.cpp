#include "platform/waiting_system.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <thread>

namespace QMT::platform {

namespace {

// A thread that sleeps until somebody sets its word, from 0 to 1.
struct Sleeper {
    Word woken{0};
};

// A sleeper's place in the list of those who sleep on a word.
struct Entry {
    Word const* word;
    Sleeper* sleeper;
    Entry* previous;
    Entry* next;
};

// The words that fall here, whose lock is held for some steps along the list.
struct alignas(64) Bucket {
    SRWLOCK lock = SRWLOCK_INIT;
    Entry* first = nullptr;
};

constexpr int bucketBits = 8;
constinit std::array<Bucket, 1 << bucketBits> buckets{};

Bucket& BucketOf(Word const* word) {
    // Multiplying spreads addresses that lie side by side.
    std::uint64_t const spread = reinterpret_cast<std::uintptr_t>(word) * 0x9E3779B97F4A7C15U;
    return buckets[spread >> (64 - bucketBits)];
}

class BucketLock {
public:
    explicit BucketLock(Bucket& locked) : bucket(locked) { AcquireSRWLockExclusive(&bucket.lock); }

    ~BucketLock() { ReleaseSRWLockExclusive(&bucket.lock); }

    BucketLock(BucketLock const&) = delete;
    BucketLock& operator=(BucketLock const&) = delete;

private:
    Bucket& bucket;
};

void Enter(Entry& entry) {
    Bucket& bucket = BucketOf(entry.word);
    BucketLock const lock(bucket);
    entry.previous = nullptr;
    entry.next = bucket.first;
    if (entry.next)
        entry.next->previous = &entry;
    bucket.first = &entry;
}

void Leave(Entry const& entry) {
    Bucket& bucket = BucketOf(entry.word);
    BucketLock const lock(bucket);
    (entry.previous ? entry.previous->next : bucket.first) = entry.next;
    if (entry.next)
        entry.next->previous = entry.previous;
}

// Lists a sleeper with all its words for as long as it lives.
class Listing {
public:
    Listing(std::span<WaitWord const> words, Sleeper& sleeper) : count(words.size()) {
        for (std::size_t i = 0; i < count; ++i) {
            entries[i].word = words[i].word;
            entries[i].sleeper = &sleeper;
            Enter(entries[i]);
        }
    }

    ~Listing() {
        for (std::size_t i = 0; i < count; ++i)
            Leave(entries[i]);
    }

    Listing(Listing const&) = delete;
    Listing& operator=(Listing const&) = delete;

private:
    std::size_t count;
    std::array<Entry, maxVectoredWords> entries;
};

// At least 1; the sleeper looks at the clock again afterwards.
DWORD MillisecondsUntil(WaitDeadline const& deadline) {
    if (!deadline)
        return INFINITE;
    auto const left =
        std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
    return static_cast<DWORD>(std::clamp<long long>(left.count(), 1, INFINITE - 1));
}

} // namespace

bool SystemWaitsOnWord() {
    return true;
}

bool SystemWaitsOnWords() {
    return true;
}

// A waker changes its word before it takes the lock of the list, and a sleeper takes that lock before it
// looks at the word: either the waker finds the sleeper in the list or the sleeper sees the change.
bool SystemSleepOnWords(std::span<WaitWord const> words, WaitDeadline const& deadline) {
    Sleeper sleeper;
    Listing const listing(words, sleeper);
    std::uint32_t notWoken = 0;
    if (AllAsExpected(words))
        while (sleeper.woken.load() == notWoken && !HasPassed(deadline))
            WaitOnAddress(&sleeper.woken, &notWoken, sizeof notWoken, MillisecondsUntil(deadline));
    return !HasPassed(deadline);
}

void SystemWake(Word& word) {
    std::array<Word*, 16> woken;
    std::size_t count = 0;
    Bucket& bucket = BucketOf(&word);
    {
        BucketLock const lock(bucket);
        for (Entry const* entry = bucket.first; entry; entry = entry->next) {
            if (entry->word != &word || entry->sleeper->woken.exchange(1) != 0)
                continue;
            if (count < woken.size())
                woken[count++] = &entry->sleeper->woken;
            else
                WakeByAddressSingle(&entry->sleeper->woken);
        }
    }
    // Outside the lock, which those who wake take first of all. They may be gone: the system takes the
    // address as a key, and does not look there.
    for (std::size_t i = 0; i < count; ++i)
        WakeByAddressSingle(woken[i]);
}

void YieldThread() {
    SwitchToThread();
}

void RelaxProcessor() {
    YieldProcessor();
}

unsigned int ProcessorCount() {
    DWORD_PTR allowed = 0;
    DWORD_PTR present = 0;
    // Both are 0 for a process on more than one group of 64 processors.
    if (GetProcessAffinityMask(GetCurrentProcess(), &allowed, &present) && allowed != 0)
        return static_cast<unsigned int>(std::popcount(allowed));
    return std::max(1u, std::thread::hardware_concurrency());
}

} // namespace QMT::platform
