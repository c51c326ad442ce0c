// What conversions know of the local zone. All times are seconds since 1970-01-01 00:00:00 as the fields of
// the moment read, in UTC or on the wall clock; offsets are local time minus UTC, in seconds.
#pragma once

#include <array>
#include <cstdint>

#include "time/calendar_fields.h"

namespace QMT {

// What stands for a changeover that does not exist.
constexpr std::int64_t noChangeover = DaysBeforeYear(2000) * secondsPerDay;

// When the two changes of a year happen, both in UTC or both by the clock in force until then.
struct Changeovers {
    std::int64_t first = noChangeover;
    std::int64_t second = noChangeover;

    bool operator==(Changeovers const&) const = default;
};

struct ZoneFacts {
    std::int64_t janOffset = 0;
    std::int64_t junOffset = 0; // the same where nothing changes
    Changeovers local;
    Changeovers utc;

    bool operator==(ZoneFacts const&) const = default;

    bool HasChangeovers() const { return janOffset != junOffset; }

    // The offset at `time`, which lies in this year and is told as `changes` are. Past the first change and
    // not past the second the one of June is in force, in any order of the two.
    std::int64_t OffsetAt(std::int64_t time, Changeovers const& changes) const {
        // Without a branch, which the processor would guess wrong for times from all over the year.
        bool const isBetween = (time >= changes.first) & (time < changes.second);
        return isBetween ? junOffset : janOffset;
    }
};

// The facts of the previous, the current and the next year.
class ZoneRecords {
public:
    ZoneRecords(int year, std::array<ZoneFacts, 3> const& factsOfYears)
        : currentYear(year),
          currentStart(StartOf(year)),
          nextStart(StartOf(year + std::int64_t{1})),
          years(factsOfYears) {}

    bool operator==(ZoneRecords const&) const = default;

    ZoneFacts const& Past() const { return years[0]; }

    ZoneFacts const& Current() const { return years[1]; }

    ZoneFacts const& Next() const { return years[2]; }

    int CurrentYear() const { return currentYear; }

    // The facts that hold for `time`; those of the nearest year for one outside the three.
    ZoneFacts const& Of(std::int64_t time) const {
        return years[(time >= currentStart ? 1U : 0U) + (time >= nextStart ? 1U : 0U)];
    }

    ZoneFacts const& OfYear(int year) const {
        return years[(year >= currentYear ? 1U : 0U) + (year > currentYear ? 1U : 0U)];
    }

    std::int64_t OffsetAtUtc(std::int64_t utc) const {
        ZoneFacts const& facts = Of(utc);
        return facts.OffsetAt(utc, facts.utc);
    }

    std::int64_t OffsetAtLocal(std::int64_t local) const {
        ZoneFacts const& facts = Of(local);
        return facts.OffsetAt(local, facts.local);
    }

private:
    static std::int64_t StartOf(std::int64_t year) { return DaysBeforeYear(year) * secondsPerDay; }

    int currentYear;
    std::int64_t currentStart;
    std::int64_t nextStart;
    std::array<ZoneFacts, 3> years;
};

} // namespace QMT
