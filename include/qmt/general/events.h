// Sections, events and counting semaphores: what threads lock and wait on.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "qmt/export.h"
#include "qmt/general/thread_annotations.h"

namespace QMT {

namespace platform {
class RecursiveMutex;
}

// A mutual-exclusion section.
//
// The caller leaves as often as he entered, on the same thread, and destroys the section only when nobody
// holds it. The section may be entered again by the thread that holds it. Where the system knows it, a
// holder inherits the priority of those who wait, so that a real-time thread is not held up by a thread of
// middling priority.
//
//     CritSection section("settings");
//     {
//         CritSectionLock lock(&section);
//         ... // one thread at a time
//     }
class QMT_GENU_API QMT_CAPABILITY("section") CritSection {
public:
    // The name is for diagnosis, may be null, is not copied, and must outlive the section. Allocates.
    explicit CritSection(char const* sectionName);
    ~CritSection();
    CritSection(CritSection const&) = delete;
    CritSection& operator=(CritSection const&) = delete;

    // Blocks until this thread holds the section, and then sees everything that earlier holders did.
    void Enter() QMT_ACQUIRE();

    // Gives back one `Enter`; the last one lets the next thread in.
    void Leave() QMT_RELEASE();

    char const* Name() const { return name; }

private:
    char const* name;
    std::unique_ptr<platform::RecursiveMutex> mutex;
};

// Holds a section for as long as it lives. `held` must not be null and must outlive the lock.
class QMT_SCOPED_CAPABILITY CritSectionLock {
public:
    explicit CritSectionLock(CritSection* held) QMT_ACQUIRE(held) : section(held) { section->Enter(); }

    ~CritSectionLock() QMT_RELEASE() { section->Leave(); }

    CritSectionLock(CritSectionLock const&) = delete;
    CritSectionLock& operator=(CritSectionLock const&) = delete;

private:
    CritSection* section;
};

// Something that threads wait for, with `WaitOnEvents` (threads.h).
//
// The caller keeps the event alive until every wait on it has returned. He may destroy it as soon as a wait
// has shown him that it is signalled: `Signal` does not touch it any more by then.
//
// `Signal` and `Reset` come from any thread, also under a section of the caller's. They never block and
// never allocate; `Signal` enters the system only to wake a sleeper, and once after a wait on several events,
// or for a limited time, that something else has ended. Whoever finds the event signalled sees everything
// that was done before the `Signal`.
//
//     Event done(true);
//     ... // the other thread: result = Work(); done.Signal();
//     if (EventSignalled(done)) Use(result);
class QMT_GENU_API Event {
public:
    // With `manualReset` true the event stays signalled until `Reset`; otherwise the one wait that it
    // ends takes the signal away. Not signalled at first.
    explicit Event(bool manualReset);
    virtual ~Event();
    virtual void Signal();
    virtual void Reset();
    Event(Event const&) = delete;
    Event& operator=(Event const&) = delete;

protected:
    Event(bool manualReset, std::uint32_t initialCount);

    // Counts may not grow beyond this; they stop there.
    static constexpr std::uint32_t maxCount = 0x3fffffff;

    // Adds one to the count, or sets it to 1 with `limit` 1; wakes the sleepers when that made the event
    // signalled.
    void AddToCount(std::uint32_t limit);

    // Takes `amount` off the count, at most what it holds.
    void TakeFromCount(std::uint32_t amount);

    // Sets how high the count must be for the event to be signalled.
    void SetThreshold(std::uint32_t newThreshold);

    std::uint32_t Threshold() const { return threshold.load(std::memory_order_relaxed); }

private:
    friend class EventAccess;

    // Bit 0: somebody sleeps on the word. Bit 1: the threshold was lowered once. The bits above: the count.
    std::atomic<std::uint32_t> word;
    std::atomic<std::uint32_t> threshold{1};
    bool staysSignalled;
};

// Looks without waiting and changes nothing.
QMT_GENU_API bool EventSignalled(Event& event);

// An event that counts its signals: signalled while the count is above 0.
//
// In countdown mode it is fed by a number of parties and is signalled once their signals have reached that
// number. A wait takes nothing off: whoever has seen it signalled calls `Reset`.
//
//     CountingSemaphore work("work", 0);
//     work.Signal();                 // a producer, for each piece
//     WaitOnEvents(events, -1);      // the consumer, with `work` among the events
//     work.Reset();                  // takes that piece off
class QMT_GENU_API CountingSemaphore : public Event {
public:
    // The name is for diagnosis, may be null, is not copied, and must outlive the semaphore. A count below 0
    // counts as 0.
    CountingSemaphore(char const* semaphoreName, int initialCount);
    ~CountingSemaphore() override;

    // Adds one to the count, which stops at 1,073,741,823.
    void Signal() override;

    // Takes one off the count, in countdown mode the number of parties; at 0 it changes nothing.
    void Reset() override;

    // Not signalled any more, whatever the count was. A countdown mode stays.
    void ForceReset();

    // From now on signalled when the count has reached `parties`; signals that were counted stay counted.
    // A number below 1 ends the mode.
    void SetCountdownMode(int parties);

    char const* Name() const { return name; }

private:
    char const* name;
};

} // namespace QMT
