// What a trace costs the thread that makes it, beside spdlog's sinks in memory and to nowhere: a text and a
// number, kept in memory. Threads trace in rounds, in which the report and the ring have room for all; only
// the rounds are timed, and between them the report is emptied. A refused trace is one of a report that is
// not on.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <barrier>
#include <cstddef>
#include <memory>
#include <spdlog/async.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/ringbuffer_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <thread>
#include <vector>

#include "durations.h"
#include "qmt/diagnostics/realtime_report.h"
#include "qmt/helpers/system.h"

namespace {

using bench::Clock;

constexpr int tracesInRound = 5'000; // of one thread

// Each of these takes traces; `BeginRound` and `EndRound` are called by one thread, `EndRound` gives the
// number of traces that are kept, -1 where that cannot be told.
class Report {
public:
    explicit Report(int) { QMT::StartMillisecsCount(); }

    void BeginRound() { QMT::RealTimeReport::TurnReportIngOn(); }

    void Trace(int number) { QMT::REALTIMETRACE(u"block written", number); }

    int EndRound() {
        auto const kept = static_cast<int>(QMT::RealTimeReport::reportItems.Size());
        std::unique_ptr<QMT::ErrorInfo> const none(QMT::RealTimeReport::WriteReportFiles(u"", u""));
        return none ? 0 : kept;
    }
};

class ReportOff : public Report {
public:
    using Report::Report;

    void BeginRound() {}

    int EndRound() { return -1; }
};

class StringText : public Report {
public:
    using Report::Report;

    void Trace(int number) { QMT::REALTIMETRACE(QMT::String(u"block written"), number); }
};

class ShortText : public Report {
public:
    using Report::Report;

    void Trace(int number) { QMT::REALTIMETRACE(u"written", number); }
};

class Spdlog {
public:
    void BeginRound() {}

    void Trace(int number) { logger->info("block written {}", number); }

    int EndRound() { return -1; }

protected:
    explicit Spdlog(std::shared_ptr<spdlog::logger> used) : logger(std::move(used)) {}

private:
    std::shared_ptr<spdlog::logger> logger;
};

class Ring : public Spdlog {
public:
    explicit Ring(int capacity)
        : Spdlog(std::make_shared<spdlog::logger>(
              "ring", std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(capacity))) {}
};

class Null : public Spdlog {
public:
    explicit Null(int)
        : Spdlog(std::make_shared<spdlog::logger>("null", std::make_shared<spdlog::sinks::null_sink_mt>())) {}
};

// The queue has room for a round, so that nobody waits for the thread behind it while he is timed.
class Async : public Spdlog {
public:
    explicit Async(int capacity) : Async(std::make_shared<spdlog::details::thread_pool>(capacity, 1)) {}

    int EndRound() {
        while (pool->queue_size() != 0)
            std::this_thread::yield();
        return -1;
    }

private:
    explicit Async(std::shared_ptr<spdlog::details::thread_pool> used)
        : Spdlog(std::make_shared<spdlog::async_logger>(
              "async", std::make_shared<spdlog::sinks::null_sink_mt>(), used)),
          pool(std::move(used)) {}

    std::shared_ptr<spdlog::details::thread_pool> pool;
};

// Threads that trace a round each time they are let in, and note when they did.
template <typename Sink>
class Tracers {
public:
    Tracers(Sink& tracedInto, int count)
        : sink(tracedInto), gate(count + 1), spans(static_cast<std::size_t>(count)) {
        for (Span& span : spans)
            threads.emplace_back([this, &span] { Run(span); });
    }

    ~Tracers() {
        ending = true;
        gate.arrive_and_wait();
    }

    Tracers(Tracers const&) = delete;
    Tracers& operator=(Tracers const&) = delete;

    // From the first thread's begin to the last one's end.
    Clock::duration Round() {
        gate.arrive_and_wait();
        gate.arrive_and_wait();
        Span whole = spans[0];
        Span common = spans[0];
        for (Span const& span : spans) {
            whole = {std::min(whole.begin, span.begin), std::max(whole.end, span.end)};
            common = {std::max(common.begin, span.begin), std::min(common.end, span.end)};
        }
        all += whole.end - whole.begin;
        together += std::max(common.end - common.begin, Clock::duration::zero());
        return whole.end - whole.begin;
    }

    // In what share of the time all threads were at it: the system may have run them one after the other.
    double ShareTogether() const { return bench::Seconds(together) / bench::Seconds(all); }

private:
    struct Span {
        Clock::time_point begin, end;
    };

    void Run(Span& span) {
        for (gate.arrive_and_wait(); !ending; gate.arrive_and_wait()) {
            span.begin = Clock::now();
            for (int number = 0; number < tracesInRound; ++number)
                sink.Trace(number);
            span.end = Clock::now();
            gate.arrive_and_wait();
        }
    }

    Sink& sink;
    std::barrier<> gate;
    bool ending = false; // changes between rounds only
    std::vector<Span> spans;
    Clock::duration all{0};
    Clock::duration together{0};
    std::vector<std::jthread> threads;
};

template <typename Sink>
void Trace(benchmark::State& state) {
    auto const threadCount = static_cast<int>(state.range(0));
    int const tracesInAll = threadCount * tracesInRound;
    Sink sink(tracesInAll);
    Tracers tracers(sink, threadCount);
    for (auto _ : state) {
        sink.BeginRound();
        state.SetIterationTime(bench::Seconds(tracers.Round()));
        int const kept = sink.EndRound();
        if (kept != -1 && kept != tracesInAll)
            state.SkipWithError("a trace is lost");
    }
    state.counters["together"] = tracers.ShareTogether();
    state.SetItemsProcessed(state.iterations() * tracesInAll);
}

template <typename Sink>
void Add(std::string const& name) {
    benchmark::RegisterBenchmark(("Trace/" + name).c_str(), Trace<Sink>)
        ->ArgName("threads")
        ->Arg(1)
        ->Arg(2)
        ->UseManualTime();
}

[[maybe_unused]] bool const areRegistered = [] {
    Add<Report>("Qmt");
    Add<ShortText>("QmtShortText");
    Add<StringText>("QmtString");
    Add<ReportOff>("QmtRefused");
    Add<Ring>("SpdlogRing");
    Add<Null>("SpdlogNull");
    Add<Async>("SpdlogAsync");
    return true;
}();

} // namespace
