#include "qmt/general/events.h"

#include <atomic>
#include <climits>
#include <deque>

#include "platform/waiting.h"
#include "qmt/general/threads.h"
#include "support/sync_action.h"
#include "support/text.h"

namespace QMT {

namespace {

using Backend = platform::WaitBackend;
using Events = SVArray<Event*, Event*>;
using Actions = std::vector<std::function<void()>>;

struct Many {
    Many(std::size_t count, bool manualReset) {
        while (events.size() < count)
            array.Add(&events.emplace_back(manualReset));
    }

    std::deque<Event> events;
    Events array;
};

// Waits for an event that is sure to come; without it the test's threads would never end.
int Wait(std::initializer_list<Event*> events) {
    Events array;
    for (Event* const event : events)
        array.Add(event);
    int const found = WaitOnEvents(array, 60'000);
    if (found >= 0)
        return found;
    std::cerr << "A wake-up is lost.\n";
    std::abort();
}

// Lets the others run, so that they fall asleep more often than not.
void Yield(std::size_t times) {
    for (; times > 0; --times)
        std::this_thread::yield();
}

// Round after round: all actions side by side, each on a thread of its own, and then `between` on this
// thread.
void RunRounds(std::size_t rounds, Actions const& actions, std::function<void()> const& between) {
    Many go(2, true);
    CountingSemaphore done(nullptr, 0);
    std::vector<std::size_t> finished(actions.size());
    std::vector<std::jthread> threads;
    done.SetCountdownMode(static_cast<int>(actions.size()));
    for (std::size_t party = 0; party < actions.size(); ++party)
        threads.emplace_back([&, party] {
            for (std::size_t round = 0; round < rounds; ++round, done.Signal()) {
                Wait({&go.events[round % 2]});
                Yield(round * party % 7);
                actions[party]();
                finished[party] = round;
            }
        });
    for (std::size_t round = 0; round < rounds; ++round, done.Reset()) {
        Yield(round % 7);
        go.events[round % 2].Signal();
        Wait({&done});
        EXPECT_EQ(finished, std::vector(actions.size(), round));
        go.events[round % 2].Reset();
        between();
    }
}

TEST(CritSection, KeepsOthersOutUntilItIsLeftAsOftenAsItWasEntered) {
    CritSection section(nullptr);
    int total = 0;
    auto const addReentered = [&]() QMT_NO_THREAD_SAFETY_ANALYSIS {
        CritSectionLock const lock(&section);
        section.Enter();
        section.Leave();
        ++total;
    };
    RunRounds(3000, Actions(4, addReentered), [] {});
    EXPECT_EQ(total, 3000 * 4);
}

// A step is + for Signal, - for Reset, F for ForceReset, a digit or M (the greatest number) for a countdown
// mode; the states behind each step are S for signalled, a point for not.
TEST(CountingSemaphore, ShowsItsCountWhateverTheOrderOfSteps) {
    std::tuple<int, std::string, std::string> const scripts[] = {{0, "-+-+++---+++F-+", ".S.SSSSS.SSS..S"},
                                                                 {2, "--", "S."},
                                                                 {-5, "+-", "S."},
                                                                 {0, "3++++-++F+-+++", "...SS..S.....S"},
                                                                 {0, "2++F++3+5++-", "..S..S.S..S."},
                                                                 {0, "3++02-1-", "...SS..."},
                                                                 {INT_MAX, "+M+-1", "SSS.."}};

    for (auto const& [initialCount, steps, states] : scripts) {
        CountingSemaphore semaphore(nullptr, initialCount);
        Events array;
        array.Add(&semaphore);
        for (std::size_t i = 0; i < steps.size(); ++i) {
            steps[i] == '+'   ? array[0]->Signal()
            : steps[i] == '-' ? array[0]->Reset()
            : steps[i] == 'F' ? semaphore.ForceReset()
                              : semaphore.SetCountdownMode(steps[i] == 'M' ? INT_MAX : steps[i] - '0');
            EXPECT_EQ(EventSignalled(semaphore), states[i] == 'S') << steps << i;
            EXPECT_EQ(WaitOnEvents(array, 0), states[i] == 'S' ? 0 : -1) << steps << i;
        }
    }
}

struct Waiting : testing::TestWithParam<Backend> {
    void SetUp() override {
        if (!platform::ForceWaitBackend(GetParam()))
            GTEST_SKIP() << "the system has no such way to sleep";
    }

    void TearDown() override { platform::ForceWaitBackend(usual); }

    Backend const usual = platform::CurrentWaitBackend();
};

INSTANTIATE_TEST_SUITE_P(Vectored, Waiting, testing::Values(Backend::Vectored));
INSTANTIATE_TEST_SUITE_P(Epoch, Waiting, testing::Values(Backend::Epoch));
INSTANTIATE_TEST_SUITE_P(Condition, Waiting, testing::Values(Backend::Condition));

TEST_P(Waiting, GivesTheLowestSignalledIndexOrNoneWhenTheTimeIsUp) {
    Events empty;
    EXPECT_EQ(WaitOnEvents(empty, -1), -1);
    Many once(3, false); // each signal ends one wait
    for (std::size_t const i : {1u, 2u, 2u})
        once.events[i].Signal();
    EXPECT_TRUE(EventSignalled(once.events[1]) && EventSignalled(once.events[1]));
    for (int const expected : {1, 2, -1})
        EXPECT_EQ(WaitOnEvents(once.array, 1), expected);
    for (std::size_t signalled = 0; signalled < 8; ++signalled) {
        Many many(3, true);
        CountingSemaphore semaphore(nullptr, 0);
        many.array[1] = &semaphore;
        many.array.Add(&semaphore);
        for (std::size_t i = 0; i < 3; ++i)
            if ((signalled >> i & 1) != 0)
                many.array[i]->Signal();
        for (int const limit : {0, 3, signalled == 0 ? 5 : -1})
            EXPECT_EQ(WaitOnEvents(many.array, limit), (std::array{-1, 0, 1, 0, 2, 0, 1, 0}[signalled]));
    }
}

TEST_P(Waiting, SeesSignalsThatComeJustBeforeTheSleep) {
    if (!SyncAction::possible)
        GTEST_SKIP() << "built without sync points";
    for (std::size_t const count : {1u, 2u, 200u}) {
        Many many(count, true);
        SyncAction const signals("WaitOnEvents: before sleeping", [&] {
            many.events.back().Signal();
            many.events.front().Signal();
            return false;
        });
        EXPECT_EQ(WaitOnEvents(many.array, -1), 0);
    }
}

TEST_P(Waiting, EndsOnAllThreadsByTheLowerEventWhichWasSignalledFirst) {
    std::mt19937 random = SeededGenerator();
    for (std::size_t const count : {1u, 2u, 128u, 129u, 300u}) {
        Many many(count, true);
        EXPECT_EQ(WaitOnEvents(many.array, 1), -1);
        std::size_t index = 0;
        auto const wait = [&] { EXPECT_EQ(WaitOnEvents(many.array, -1), static_cast<int>(index)); };
        auto const signal = [&] { many.events[index].Signal(), many.events.back().Signal(); };
        RunRounds(count < 10 ? 3000 : 100, {wait, wait, signal}, [&] {
            many.events[index].Reset(), many.events.back().Reset();
            index = random() % count;
        });
    }
}

TEST_P(Waiting, TakesEveryCountOfASemaphoreThatSeveralThreadsFeed) {
    CountingSemaphore work(nullptr, 0);
    auto const feed = [&] {
        for (int i = 0; i < 300; ++i)
            work.Signal();
    };
    auto const take = [&] {
        for (int i = 0; i < 3 * 300; ++i, work.Reset())
            Wait({&work});
    };
    RunRounds(20, {take, feed, feed, feed}, [&] { EXPECT_FALSE(EventSignalled(work)); });
}

// A waiter that had looked by the old number fell asleep once the number was lowered, and nobody woke it.
TEST_P(Waiting, WakesWhenTheNumberOfPartiesIsLoweredToTheirSignals) {
    CountingSemaphore feed(nullptr, 0);
    feed.SetCountdownMode(2);
    auto const wait = [&] { Wait({&feed}); };
    RunRounds(6000, {wait, wait, [&] { feed.Signal(); }, [&] { feed.SetCountdownMode(1); }},
              [&] { feed.ForceReset(), feed.SetCountdownMode(2); });
}

TEST_P(Waiting, LetsTheWaiterDestroyTheEventAtOnce) {
    auto owned = std::make_unique<Event>(true);
    Event* event = owned.get();
    auto const waitAndDestroy = [&] { Wait({event}), owned.reset(); };
    RunRounds(4000, {waitAndDestroy, [&] { event->Signal(); }}, [&] {
        owned = std::make_unique<CountingSemaphore>(nullptr, 0);
        event = owned.get();
    });
}

TEST_P(Waiting, BringsEachSignalToOneOfManySleepersOnOverlappingEvents) {
    constexpr std::size_t count = 6;
    Many tokens(count, false);
    Event allTaken(true);
    std::atomic<std::size_t> taken = 0;
    Actions actions;
    for (std::size_t i = 0; i < count; ++i)
        actions.emplace_back([&, i] {
            tokens.events[i].Signal();
            while (Wait({&allTaken, &tokens.events[(i + 1) % count], &tokens.events[(i + 3) % count]}) != 0)
                if (++taken == count)
                    allTaken.Signal();
        });
    RunRounds(1000, actions, [&] {
        EXPECT_EQ(taken.exchange(0), count);
        allTaken.Reset();
    });
}

} // namespace

} // namespace QMT
