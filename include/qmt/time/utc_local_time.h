// Calendar values that know what they stand for.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"
#include "qmt/time/portable_time.h"

namespace QMT {

class LocalTime;
struct LocalReading; // time_zone.h

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

    // The moment at which the wall clock shows `local`: of a reading that it repeats the first one, and for a
    // reading that it skips as if it had been set forward already. Exact for the three years of the zone's
    // records, where those are; beyond them the January offset of the nearest year holds. The record is that
    // of the year which the reading shows.
    UTCTime(LocalTime const& local);

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
    bool operator>=(UTCTime const& other) const;
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
    friend class LocalTime;

    explicit UTCTime(PortableTime&& value) noexcept;
};

// A reading of the local wall clock.
//
// The caller follows the rules of `PortableTime` and those of `UTCTime` on time units. He calls
// `PortableTime::InitialiseZone` at the start, or leaves it to the first conversion, and `RefreshZone` when
// the year has changed. Conversions, explicit ones and those inside the operations here, then come from any
// thread; they neither wait nor enter the system, and allocate only the values that they give. Nothing here
// fails.
//
// Arithmetic with spans goes through UTC, so that it counts the time that passes; differences, comparisons
// and fields are those of the reading. Where the clock goes from 02:00 to 03:00:
//
//     LocalTime const early(2024, 3, 31, 1, 30, 0);
//     LocalTime const late = early + TimeSpan(0, 1, 0, 0); // reads 03:30
//     TimeSpan const apart = late - early;                 // 2 hours by the readings
//     TimeSpan const passed = UTCTime(late) - UTCTime(early); // 1 hour
class QMT_UTILU_API LocalTime : public PortableTime {
public:
    // As the constructors of `UTCTime`. A reading that the clock skips stays as it is given.
    LocalTime();
    LocalTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour, unsigned int minute,
              unsigned int second);
    LocalTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot);
    explicit LocalTime(String text);
    LocalTime(String date, unsigned int slot);

    // What the wall clock shows at `utc`. Exact for the three years of the zone's records, where those are;
    // beyond them the January offset of the nearest year holds. The record is that of the year in UTC.
    LocalTime(UTCTime const& utc);

    // The time that the application is to see: a modifier in force counts.
    static LocalTime GetTimeNow();

    // 00:00:00 of that day.
    static LocalTime GetTodayStart();

    // What the wall clock shows so much later or earlier.
    LocalTime& operator+=(TimeSpan const& span);
    LocalTime& operator-=(TimeSpan const& span);
    LocalTime operator+(TimeSpan const& span) const;
    LocalTime operator-(TimeSpan const& span) const;

    // The difference of the readings, which across a change of the offset is not the time that passed. Beyond
    // 68 years either way it wraps.
    TimeSpan operator-(LocalTime const& other) const;

    bool operator>(LocalTime const& other) const;
    bool operator<(LocalTime const& other) const;
    bool operator>=(LocalTime const& other) const;
    bool operator==(LocalTime const& other) const;

    // The boundaries after and before the value's time unit, counted from the whole hours of UTC.
    LocalTime NextTimeUnit() const;
    LocalTime PrevTimeUnit() const;

    // The start of the value's time unit, counted from the whole hour of the wall clock.
    LocalTime GetTimeSlot() const;

    // Move the value to the minute of UTC that is the multiple of `minutes` at or below it, or at or above
    // it.
    void RoundDownMinutes(int minutes);
    void RoundUpMinutes(int minutes);

    // Whether the clock shows the reading once, never or twice, and the moments that it can mean. It judges
    // by what conversions from UTC give nearby. Within a day of New Year, beside a year whose record is not
    // exact, the clock it sees may jump where the system's does not; the conversion of the reading, which
    // asks one record only, can then differ from all moments given here.
    LocalReading Classify() const;
};

// Time of day at the start of time unit `slot`, `minutesOff` earlier, as 09:30. It does not wrap: what lies
// past the day gives hours from 24 on, what lies before it a minus sign in each part that is below 0.
QMT_UTILU_API String TimeUnitToTime(unsigned int slot, int minutesOff);

// Writes `text` and the local time to the developer's debug output, as in: Started at 2024/03/05 14:07:09.
// Enters the system.
QMT_UTILU_API void LogToIDETime(String text);

} // namespace QMT
