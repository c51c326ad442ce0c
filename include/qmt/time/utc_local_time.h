// Calendar values that know what they stand for.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"
#include "qmt/time/portable_time.h"

namespace QMT {

// A moment in UTC.
//
// The caller follows the rules of `PortableTime`. Operations on time units and rounding need a time unit and
// an argument above 0; both work on the minute within the hour and leave the seconds as they are. Ends of
// hours, days, months and years are crossed as the calendar tells.
//
//     UTCTime slot = UTCTime::GetTimeNow().GetTimeSlot();
//     UTCTime const next = slot.NextTimeUnit();
//     TimeSpan const length = next - slot;
class QMT_UTILU_API UTCTime : public PortableTime {
public:
    // 2000/01/01 00:00:00.
    UTCTime();

    // Fields out of range are carried.
    UTCTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour, unsigned int minute,
            unsigned int second);

    // The start of time unit `slot` of that day; one past the day's end lies in a later day.
    UTCTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot);

    // Reads what `YMD`, `YMDHM` and `YMDHMS` write for a year of four digits; fields that are missing or no
    // numbers are those of `UTCTime()`.
    explicit UTCTime(String text);

    // The start of time unit `slot` of the day that `date` tells, in the form 2024/03/05; a `date` that has
    // not just 10 characters counts as 2000/01/01.
    UTCTime(String date, unsigned int slot);

    // The time that the application is to see: a modifier in force counts.
    static UTCTime GetTimeNow();

    // The system's clock, whatever modifier is installed.
    static UTCTime GetSystemTimeNow();

    UTCTime operator+(TimeSpan const& span) const;
    UTCTime& operator+=(TimeSpan const& span);
    UTCTime& operator-=(TimeSpan const& span);

    // The seconds from `other` to this value; beyond 68 years either way the result wraps.
    TimeSpan operator-(UTCTime const& other) const;

    bool operator>(UTCTime const& other) const;
    bool operator<(UTCTime const& other) const;
    bool operator==(UTCTime const& other) const;

    // The boundary of time units after, before and at the value's own unit. Boundaries are counted anew from
    // each whole hour.
    UTCTime NextTimeUnit() const;
    UTCTime PrevTimeUnit() const;
    UTCTime GetTimeSlot() const;

    // Moves the minute to the multiple of `minutes` at or below it, or at or above it.
    void RoundDownMinutes(int minutes);
    void RoundUpMinutes(int minutes);

private:
    explicit UTCTime(PortableTime&& value) noexcept;
};

} // namespace QMT
