#include "qmt/general/events.h"

#include <algorithm>

#include "general/event_access.h"
#include "platform/crit_section.h"
#include "platform/waiting.h"

namespace QMT {

namespace {

std::uint32_t AsCount(int number, int lowest, std::uint32_t highest) {
    return std::min(static_cast<std::uint32_t>(std::max(lowest, number)), highest);
}

} // namespace

CritSection::CritSection(char const* sectionName)
    : name(sectionName), mutex(platform::RecursiveMutex::Create()) {}

CritSection::~CritSection() = default;

void CritSection::Enter() {
    mutex->Enter();
}

void CritSection::Leave() {
    mutex->Leave();
}

Event::Event(bool manualReset) : Event(manualReset, 0) {}

Event::Event(bool manualReset, std::uint32_t initialCount)
    : word(initialCount * EventAccess::countOfOne), staysSignalled(manualReset) {}

Event::~Event() = default;

void Event::Signal() {
    AddToCount(1);
}

void Event::Reset() {
    TakeFromCount(maxCount);
}

// The read-modify-write that makes the event signalled is the last touch of the object: a waiter may see it
// and destroy the event before this thread comes to wake anybody. Every change of the word is one, so that
// whoever sees the count complete sees what each of the signallers did before.
void Event::AddToCount(std::uint32_t limit) {
    EventAccess::Word& eventWord = word;
    std::uint32_t const needed = Threshold();
    std::uint32_t seen = eventWord.load(std::memory_order_relaxed);
    std::uint32_t next = 0;
    bool wakes = false;
    do {
        std::uint32_t const count = std::min(EventAccess::Count(seen), limit - 1) + 1;
        wakes = count >= needed || (seen & EventAccess::loweredBit) != 0;
        std::uint32_t const cleared = wakes ? EventAccess::sleeperBit : 0;
        next = count * EventAccess::countOfOne | (seen % EventAccess::countOfOne & ~cleared);
    } while (!eventWord.compare_exchange_weak(seen, next));
    if (wakes && (seen & EventAccess::sleeperBit) != 0)
        platform::WakeSleepers(eventWord);
}

void Event::TakeFromCount(std::uint32_t amount) {
    std::uint32_t seen = word.load(std::memory_order_relaxed);
    std::uint32_t next = 0;
    do {
        std::uint32_t const taken = std::min(EventAccess::Count(seen), amount);
        next = seen - taken * EventAccess::countOfOne;
    } while (!word.compare_exchange_weak(seen, next));
}

// A signal on its way may still go by the old threshold. Where that was higher it would not wake those who
// came to sleep by the new one. So a lowered threshold leaves a mark: a signal that has not seen it has to
// look again, and one that has wakes in any case.
void Event::SetThreshold(std::uint32_t newThreshold) {
    bool const isLower = newThreshold < Threshold();
    threshold.store(newThreshold, std::memory_order_relaxed);
    if (isLower)
        word.fetch_or(EventAccess::loweredBit);
    std::uint32_t const seen = word.fetch_and(~EventAccess::sleeperBit);
    if ((seen & EventAccess::sleeperBit) != 0)
        platform::WakeSleepers(word);
}

bool EventSignalled(Event& event) {
    return EventAccess::IsSignalled(event);
}

CountingSemaphore::CountingSemaphore(char const* semaphoreName, int initialCount)
    : Event(true, AsCount(initialCount, 0, maxCount)), name(semaphoreName) {}

CountingSemaphore::~CountingSemaphore() = default;

void CountingSemaphore::Signal() {
    AddToCount(maxCount);
}

void CountingSemaphore::Reset() {
    TakeFromCount(Threshold());
}

void CountingSemaphore::ForceReset() {
    TakeFromCount(maxCount);
}

void CountingSemaphore::SetCountdownMode(int parties) {
    SetThreshold(AsCount(parties, 1, maxCount));
}

} // namespace QMT
