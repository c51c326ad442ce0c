// Building calendar values, their texts, and both conversions, beside the C library and cctz. All walk
// through the same moments of the current year, in the zone that TZ names or else in one with saving time.
// Values of ours include their heap handle.
#include <benchmark/benchmark.h>
#include <cctz/civil_time.h>
#include <cctz/time_zone.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "qmt/time/utc_local_time.h"

namespace {

constexpr char const* timeFormat = "%Y/%m/%d %H:%M:%S";

using CctzTime = cctz::time_point<cctz::seconds>;

// One moment in every form that is converted here.
struct Moment {
    std::time_t count;
    std::tm utcFields;
    std::tm localFields;
    CctzTime cctzTime;
    cctz::civil_second cctzLocal;
    QMT::UTCTime utc;
    QMT::LocalTime local;
    std::string text;
    QMT::String utcText;
};

cctz::time_zone CctzZone() {
    static cctz::time_zone const zone = cctz::local_time_zone();
    return zone;
}

Moment MakeMoment(std::time_t count) {
    std::tm utc{};
    gmtime_r(&count, &utc);
    std::tm local{};
    localtime_r(&count, &local);
    local.tm_isdst = -1;
    CctzTime const cctzTime{cctz::seconds(count)};
    auto const of = [](int field) { return static_cast<unsigned int>(field); };
    QMT::UTCTime const value(of(utc.tm_year + 1900), of(utc.tm_mon + 1), of(utc.tm_mday), of(utc.tm_hour),
                             of(utc.tm_min), of(utc.tm_sec));
    std::array<char, 20> text;
    std::strftime(text.data(), text.size(), timeFormat, &utc);
    return {count, utc,   local,       cctzTime,          cctz::convert(cctzTime, CctzZone()),
            value, value, text.data(), value.YMDHMS(true)};
}

// Scattered over the current year.
std::vector<Moment> MakeMoments() {
    std::tm yearStart{};
    yearStart.tm_year = QMT::UTCTime::GetSystemTimeNow().GetYear() - 1900;
    yearStart.tm_mday = 1;
    std::time_t const start = timegm(&yearStart);
    std::vector<Moment> moments;
    std::uint32_t random = 1;
    for (int i = 0; i < 1000; ++i) {
        random = random * 1664525U + 1013904223U;
        moments.push_back(MakeMoment(start + random / 16 % (365 * 86400)));
    }
    return moments;
}

template <class Operation>
void Run(benchmark::State& state, Operation operation) {
    static std::vector<Moment> const moments = MakeMoments();
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(operation(moments[next]));
        next = next + 1 < moments.size() ? next + 1 : 0;
    }
}

template <class Operation>
void Add(char const* name, Operation operation) {
    benchmark::RegisterBenchmark(name, [operation](benchmark::State& state) { Run(state, operation); });
}

int Register() {
    setenv("TZ", "America/St_Johns", 0);
    Add("Build/Value", [](Moment const& moment) {
        std::tm const& fields = moment.utcFields;
        auto const of = [](int field) { return static_cast<unsigned int>(field); };
        return QMT::UTCTime(of(fields.tm_year + 1900), of(fields.tm_mon + 1), of(fields.tm_mday),
                            of(fields.tm_hour), of(fields.tm_min), of(fields.tm_sec));
    });
    Add("Build/Copy", [](Moment const& moment) { return QMT::UTCTime(moment.utc); });
    Add("Build/timegm", [](Moment const& moment) {
        std::tm fields = moment.utcFields;
        return timegm(&fields);
    });
    Add("Build/gmtime_r", [](Moment const& moment) {
        std::tm fields;
        gmtime_r(&moment.count, &fields);
        return fields;
    });

    Add("ToLocal/Value", [](Moment const& moment) { return QMT::LocalTime(moment.utc); });
    Add("ToLocal/localtime_r", [](Moment const& moment) {
        std::tm fields;
        localtime_r(&moment.count, &fields);
        return fields;
    });
    Add("ToLocal/cctz",
        [zone = CctzZone()](Moment const& moment) { return cctz::convert(moment.cctzTime, zone); });

    Add("ToUtc/Value", [](Moment const& moment) { return QMT::UTCTime(moment.local); });
    Add("ToUtc/mktime", [](Moment const& moment) {
        std::tm fields = moment.localFields;
        return std::mktime(&fields);
    });
    Add("ToUtc/cctz",
        [zone = CctzZone()](Moment const& moment) { return cctz::convert(moment.cctzLocal, zone); });

    Add("Text/Write", [](Moment const& moment) { return moment.utc.YMDHMS(true); });
    Add("Text/strftime", [](Moment const& moment) {
        std::array<char, 20> text;
        std::strftime(text.data(), text.size(), timeFormat, &moment.utcFields);
        return text;
    });
    Add("Text/Read", [](Moment const& moment) { return QMT::UTCTime(moment.utcText); });
    Add("Text/strptime", [](Moment const& moment) {
        std::tm fields{};
        strptime(moment.text.c_str(), timeFormat, &fields);
        return timegm(&fields);
    });
    return 0;
}

[[maybe_unused]] int const registered = Register();

} // namespace
