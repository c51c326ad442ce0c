// What the clocks of a zone do year by year.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace QMT::platform {

// One year. Offsets are local time minus UTC, in seconds; moments are seconds since 1970-01-01 00:00:00 UTC.
struct YearRule {
    std::int64_t standardOffset = 0;
    std::int64_t savingOffset = 0;

    // Saving time lasts from the one to the other; from the year's start and to its end when the second comes
    // first, and never when they are equal.
    std::int64_t savingStarts = 0;
    std::int64_t savingEnds = 0;

    bool IsSaving(std::int64_t utcSeconds) const {
        bool const isBehindStart = utcSeconds >= savingStarts;
        bool const isBeforeEnd = utcSeconds < savingEnds;
        return savingStarts <= savingEnds ? isBehindStart && isBeforeEnd : isBehindStart || isBeforeEnd;
    }

    std::int64_t OffsetAt(std::int64_t utcSeconds) const {
        return IsSaving(utcSeconds) ? savingOffset : standardOffset;
    }
};

// The rule of each year from 1601 to 30827.
using ZoneRules = std::function<YearRule(int year)>;

// Of a text such as "EST5", "EST5EDT", "<+0330>-3:30" or "CET-1CEST,M3.5.0,M10.5.0/3", which POSIX defines
// for the environment variable "TZ": the name and the offset west of Greenwich of standard time, and those of
// saving time, an hour ahead unless it is told, with the days and hours at which it begins and ends: those of
// the United States unless they are told. Empty for any other text.
std::optional<ZoneRules> RulesOfText(std::string_view text);

// The day on which the week's day `weekDay`, 0 for Sunday, falls for the `week`-th time in a month, 5 for the
// last, in days since 1970-01-01.
std::int64_t DayOfWeekInMonth(int year, unsigned int month, unsigned int week, unsigned int weekDay);

} // namespace QMT::platform
