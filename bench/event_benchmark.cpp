// What a signal costs, and how soon a sleeper runs, beside an eventfd and a mutex with a condition variable.
#include <benchmark/benchmark.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "durations.h"
#include "qmt/general/threads.h"

namespace {

using bench::Clock;

// Each of these counts signals. Its sleeper also waits on a second one, as a link does on its stop event;
// with a condition variable the two are one.
class Semaphore {
public:
    Semaphore() {
        events.Add(&stop);
        events.Add(&semaphore);
    }

    void Signal() { semaphore.Signal(); }

    void Wait() {
        QMT::WaitOnEvents(events, -1);
        semaphore.Reset();
    }

private:
    QMT::Event stop{true};
    QMT::CountingSemaphore semaphore{"benchmark", 0};
    QMT::SVArray<QMT::Event*, QMT::Event*> events;
};

class EventFd {
public:
    EventFd() = default;

    ~EventFd() {
        close(stop);
        close(count);
    }

    EventFd(EventFd const&) = delete;
    EventFd& operator=(EventFd const&) = delete;

    void Signal() { eventfd_write(count, 1); }

    void Wait() {
        std::array<pollfd, 2> files{{{stop, POLLIN, 0}, {count, POLLIN, 0}}};
        poll(files.data(), files.size(), -1);
        eventfd_t taken = 0;
        eventfd_read(count, &taken);
    }

private:
    int stop = eventfd(0, EFD_CLOEXEC);
    int count = eventfd(0, EFD_CLOEXEC | EFD_SEMAPHORE);
};

class MutexAndCondition {
public:
    void Signal() {
        {
            std::scoped_lock const lock(mutex);
            ++count;
        }
        hasCount.notify_one();
    }

    void Wait() {
        std::unique_lock lock(mutex);
        hasCount.wait(lock, [this] { return count > 0; });
        --count;
    }

private:
    std::mutex mutex;
    std::condition_variable hasCount;
    std::uint64_t count = 0;
};

// The second thread does nothing: a process that has one only gets cheaper mutexes.
template <typename Signalled>
void WithoutSleeper(benchmark::State& state) {
    std::atomic<bool> ending{false};
    std::jthread const bystander([&] { ending.wait(false); });
    Signalled signalled;
    for (auto _ : state)
        signalled.Signal();
    ending.store(true);
    ending.notify_one();
}

// A thread that sleeps on `signalled` again and again and notes when it has been woken.
template <typename Signalled>
class Sleeper {
public:
    Sleeper() : thread([this] { Run(); }) {}

    ~Sleeper() {
        ending.store(true);
        signalled.Signal();
        thread.join();
    }

    Sleeper(Sleeper const&) = delete;
    Sleeper& operator=(Sleeper const&) = delete;

    void Signal() { signalled.Signal(); }

    // Waits until the sleeper has been woken so often; gives the last time.
    Clock::time_point WokenAt(std::uint64_t times) const {
        while (timesWoken.load(std::memory_order_acquire) < times)
            std::this_thread::yield();
        return lastWoken;
    }

private:
    void Run() {
        for (std::uint64_t times = 1; !ending.load(); ++times) {
            signalled.Wait();
            lastWoken = Clock::now();
            timesWoken.store(times, std::memory_order_release);
        }
    }

    Signalled signalled;
    Clock::time_point lastWoken;
    std::atomic<std::uint64_t> timesWoken{0};
    std::atomic<bool> ending{false};
    std::thread thread;
};

// The time is that of the call; the counters tell how long after its begin the sleeper ran. The pause lets
// the sleeper fall asleep.
template <typename Signalled>
void WithSleeper(benchmark::State& state) {
    constexpr std::chrono::microseconds pause(300);
    Sleeper<Signalled> sleeper;
    bench::Durations wakeUps(state.max_iterations);
    std::uint64_t times = 0;
    for (auto _ : state) {
        std::this_thread::sleep_for(pause);
        Clock::time_point const start = Clock::now();
        sleeper.Signal();
        state.SetIterationTime(bench::Seconds(Clock::now() - start));
        wakeUps.Add(sleeper.WokenAt(++times) - start);
    }
    wakeUps.Report(state, "wakeUp_");
}

// Two threads that wake each other by turns; an iteration is there and back.
template <typename Signalled>
void RoundTrip(benchmark::State& state) {
    Signalled there;
    Signalled back;
    std::atomic<bool> ending{false};
    std::thread other([&] {
        for (there.Wait(); !ending.load(); there.Wait())
            back.Signal();
    });
    for (auto _ : state) {
        there.Signal();
        back.Wait();
    }
    ending.store(true);
    there.Signal();
    other.join();
}

} // namespace

BENCHMARK_TEMPLATE(WithoutSleeper, Semaphore)->Name("Event/Signal/Qmt");
BENCHMARK_TEMPLATE(WithoutSleeper, EventFd)->Name("Event/Signal/EventFd");
BENCHMARK_TEMPLATE(WithoutSleeper, MutexAndCondition)->Name("Event/Signal/MutexAndCondition");

BENCHMARK_TEMPLATE(WithSleeper, Semaphore)
    ->Name("Event/SignalSleeper/Qmt")
    ->Iterations(1'000)
    ->UseManualTime();
BENCHMARK_TEMPLATE(WithSleeper, EventFd)
    ->Name("Event/SignalSleeper/EventFd")
    ->Iterations(1'000)
    ->UseManualTime();
BENCHMARK_TEMPLATE(WithSleeper, MutexAndCondition)
    ->Name("Event/SignalSleeper/MutexAndCondition")
    ->Iterations(1'000)
    ->UseManualTime();

BENCHMARK_TEMPLATE(RoundTrip, Semaphore)->Name("Event/RoundTrip/Qmt")->UseRealTime();
BENCHMARK_TEMPLATE(RoundTrip, EventFd)->Name("Event/RoundTrip/EventFd")->UseRealTime();
BENCHMARK_TEMPLATE(RoundTrip, MutexAndCondition)->Name("Event/RoundTrip/MutexAndCondition")->UseRealTime();
