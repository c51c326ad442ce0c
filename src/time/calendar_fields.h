// The Gregorian calendar, carried on without end in both directions, between `std::tm` and a count of
// seconds since 1970-01-01 00:00:00. Looks at neither the environment nor a time zone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>

namespace QMT {

constexpr std::int64_t secondsPerDay = 86400;

constexpr std::int64_t daysIn400Years = 146097;

// Days from 1 January of the year 1 to 1 January 1970.
constexpr std::int64_t epochDay = 719162;

struct Quotient {
    std::int64_t whole;
    std::int64_t rest; // 0 to divisor - 1, also for a negative dividend
};

// `divisor` is above 0.
constexpr Quotient DivideDown(std::int64_t dividend, std::int64_t divisor) {
    std::int64_t const whole = dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
    return {whole, dividend - whole * divisor};
}

template <class Year>
constexpr bool IsLeapYear(Year year) {
    return year % 4 == 0 && (year % 16 == 0 || year % 25 != 0);
}

// Days from 1 January 1970 to 1 January of `year`, negative before. `year` fits 34 bits.
constexpr std::int64_t DaysBeforeYear(std::int64_t year) {
    // Years are counted from far enough back that none is negative, because division rounds to zero.
    constexpr std::int64_t cycles = std::int64_t{1} << 25;
    auto const past = static_cast<std::uint64_t>(year - 1 + cycles * 400);
    std::uint64_t const centuries = past / 100;
    std::uint64_t const days = past * 365 + past / 4 - centuries + centuries / 4;
    return static_cast<std::int64_t>(days) - cycles * daysIn400Years - epochDay;
}

// For common and leap years, the days from 1 January to the first of each month.
inline constexpr std::array<std::array<std::int16_t, 13>, 2> monthStarts{
    {{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
     {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}}};

// Days from 1 January to the first of `month`, 0 to 11; 12 stands for the next 1 January.
constexpr int DaysBeforeMonth(bool leapYear, int month) {
    return monthStarts[leapYear ? 1U : 0U][static_cast<std::size_t>(month)];
}

// 0 is Sunday; `day` counts from 1 January 1970, a Thursday.
constexpr int WeekDay(std::int64_t day) {
    return static_cast<int>(DivideDown(day + 4, 7).rest);
}

// Sets all of the date in `fields`. `day` counts from 1 January 1970. A year that `tm_year` cannot hold
// keeps its lower 32 bits.
constexpr void SetDate(std::tm& fields, std::int64_t day) {
    Quotient const cycle = DivideDown(day + epochDay, daysIn400Years);
    auto const dayOfCycle = static_cast<std::uint32_t>(cycle.rest);
    // Taking off the leap days that have passed leaves years of 365 days.
    std::uint32_t const yearOfCycle =
        (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    std::uint32_t const dayOfYear = dayOfCycle - yearOfCycle * 365 - yearOfCycle / 4 + yearOfCycle / 100;
    auto const& starts = monthStarts[IsLeapYear(yearOfCycle + 1) ? 1 : 0];
    // No month is longer than 32 days, so this is the month or the one before it.
    std::uint32_t month = dayOfYear / 32;
    month += static_cast<int>(dayOfYear) >= starts[month + 1] ? 1U : 0U;
    fields.tm_yday = static_cast<int>(dayOfYear);
    fields.tm_mon = static_cast<int>(month);
    fields.tm_mday = fields.tm_yday - starts[month] + 1;
    fields.tm_year = static_cast<int>(cycle.whole * 400 + yearOfCycle - 1899);
    // A cycle of 400 years has whole weeks, and begins with a Monday.
    fields.tm_wday = static_cast<int>((dayOfCycle + 1) % 7);
}

constexpr void SetTimeOfDay(std::tm& fields, std::uint32_t secondOfDay) {
    fields.tm_sec = static_cast<int>(secondOfDay % 60);
    fields.tm_min = static_cast<int>(secondOfDay / 60 % 60);
    fields.tm_hour = static_cast<int>(secondOfDay / 3600);
}

// All fields for a count; daylight saving is 0.
constexpr std::tm UtcSecondsToFields(std::int64_t seconds) {
    Quotient const days = DivideDown(seconds, secondsPerDay);
    std::tm fields{};
    SetTimeOfDay(fields, static_cast<std::uint32_t>(days.rest));
    SetDate(fields, days.whole);
    return fields;
}

// Moves `fields` by `shift` seconds, which leads to the count `seconds`. Quick to a neighbouring day of the
// same month, and without a branch on whether the day changes, which the processor could not foretell.
constexpr void ShiftFields(std::tm& fields, std::int64_t shift, std::int64_t seconds) {
    std::int64_t const second = (fields.tm_hour * 60 + fields.tm_min) * 60 + fields.tm_sec + shift;
    int const days = (second >= secondsPerDay ? 1 : 0) - (second < 0 ? 1 : 0);
    auto const secondOfDay = static_cast<std::uint64_t>(second - days * secondsPerDay);
    auto const dayIndex = static_cast<unsigned int>(fields.tm_mday - 1 + days);
    if (secondOfDay >= secondsPerDay || (dayIndex >= 28 && days != 0)) {
        fields = UtcSecondsToFields(seconds);
        return;
    }
    SetTimeOfDay(fields, static_cast<std::uint32_t>(secondOfDay));
    fields.tm_mday += days;
    fields.tm_yday += days;
    fields.tm_wday = (fields.tm_wday + 7 + days) % 7;
}

// Whether every field, the day apart, lies in its own range.
constexpr bool InRange(std::tm const& fields) {
    auto const below = [](int field, unsigned int end) { return static_cast<unsigned int>(field) < end; };
    return below(fields.tm_mon, 12) && below(fields.tm_hour, 24) && below(fields.tm_min, 60) &&
           below(fields.tm_sec, 60);
}

// Gives the count for year, month, day, hour, minute and second of `fields`, and normalises `fields`: what is
// out of range is carried into the next larger field, the other fields are set.
constexpr std::int64_t FieldsToUtcSeconds(std::tm& fields) {
    Quotient const years = DivideDown(fields.tm_mon, 12);
    std::int64_t const year = std::int64_t{1900} + fields.tm_year + years.whole;
    bool const leapYear = IsLeapYear(year);
    auto const month = static_cast<int>(years.rest);
    std::int64_t const dayOfYear = std::int64_t{DaysBeforeMonth(leapYear, month)} + fields.tm_mday - 1;
    std::int64_t const day = DaysBeforeYear(year) + dayOfYear;
    std::int64_t const seconds = ((day * 24 + fields.tm_hour) * 60 + fields.tm_min) * 60 + fields.tm_sec;
    if (!InRange(fields) || fields.tm_mday < 1 || dayOfYear >= DaysBeforeMonth(leapYear, month + 1)) {
        fields = UtcSecondsToFields(seconds);
    } else {
        fields.tm_yday = static_cast<int>(dayOfYear);
        fields.tm_wday = WeekDay(day);
        fields.tm_isdst = 0;
    }
    return seconds;
}

} // namespace QMT
