#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <span>
#include <utility>

#include "general/event_access.h"
#include "general/spin_budget.h"
#include "general/sync_point.h"
#include "platform/waiting.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

using Events = SVArray<Event*, Event*>;
using Clock = std::chrono::steady_clock;

constexpr int none = -1;

int FirstThatEndsWait(Events const& events, std::size_t end) {
    for (std::size_t i = 0; i < end; ++i)
        if (EventAccess::EndsWait(*events[i]))
            return static_cast<int>(i);
    return none;
}

// The lowest signalled index: an event that was signalled before the one found is seen by the second look.
int FirstSignalled(Events const& events) {
    for (std::size_t i = 0; i < events.Size(); ++i) {
        if (!EventAccess::IsSignalled(*events[i]))
            continue;
        int const lowest = FirstThatEndsWait(events, i + 1);
        if (lowest != none)
            return lowest;
    }
    return none;
}

// Marks all events as slept on and gathers the words to sleep on; false when one is signalled already.
bool AnnounceSleeper(Events const& events, std::span<platform::WaitWord> words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::uint32_t const expected = EventAccess::AnnounceSleeper(*events[i]);
        if (expected == 0)
            return false;
        words[i] = {&EventAccess::WordOf(*events[i]), expected};
    }
    return true;
}

// Sleeps until an event may be signalled; false when the time is up.
bool Sleep(Events const& events, std::span<platform::WaitWord> words, platform::WaitDeadline deadline,
           SpinBudget& budget) {
    if (!AnnounceSleeper(events, words))
        return true;
    QMT_SYNC_POINT("WaitOnEvents: before sleeping");
    Clock::time_point const start = Clock::now();
    bool const inTime = platform::SleepOnWords(words, deadline);
    budget.Slept(Clock::now() - start);
    return inTime;
}

int SleepUntilSignalled(Events const& events, std::span<platform::WaitWord> words,
                        platform::WaitDeadline deadline, SpinBudget& budget) {
    for (;;) {
        bool const inTime = Sleep(events, words, deadline, budget);
        int const found = FirstSignalled(events);
        if (found != none || !inTime)
            return found;
    }
}

int SleepUntilSignalled(Events const& events, platform::WaitDeadline deadline, SpinBudget& budget) {
    std::size_t const count = events.Size();
    if (count <= platform::maxVectoredWords) {
        std::array<platform::WaitWord, platform::maxVectoredWords> words;
        return SleepUntilSignalled(events, std::span(words).first(count), deadline, budget);
    }
    auto const words = std::make_unique<platform::WaitWord[]>(count);
    return SleepUntilSignalled(events, {words.get(), count}, deadline, budget);
}

platform::WaitDeadline DeadlineAfter(int milliseconds) {
    if (milliseconds < 0)
        return {};
    return Clock::now() + std::chrono::milliseconds(milliseconds);
}

} // namespace

int WaitOnEvents(Events& events, int milliseconds) {
    thread_local SpinBudget budget;
    Events const& waitedFor = events;
    int found = FirstSignalled(waitedFor);
    if (found != none || milliseconds == 0 || waitedFor.Size() == 0)
        return found;
    platform::WaitDeadline const deadline = DeadlineAfter(milliseconds);
    platform::YieldThread();
    found = FirstSignalled(waitedFor);
    if (found != none)
        return found;
    if (budget.Spin([&] { return (found = FirstSignalled(waitedFor)) != none; }))
        return found;
    return SleepUntilSignalled(waitedFor, deadline, budget);
}

} // namespace QMT
