// Durations and calendar values. What the values mean, UTC or the local wall clock, the classes of
// utc_local_time.h add.
#pragma once

#include <memory>

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

struct ZoneYear; // time_zone.h

// What a `TimeSpan` holds: a signed length of time. For those who supply spans of their own.
class QMT_UTILU_API TimeSpanImpInterface {
public:
    virtual ~TimeSpanImpInterface() = default;

    // Whether both lengths are the same to the second; `other` is not null.
    virtual bool IsEqual(TimeSpanImpInterface const* other) const = 0;

    // The length in whole units, cut towards zero.
    virtual int GetTotalHours() const = 0;
    virtual int GetTotalMinutes() const = 0;
    virtual int GetTotalSeconds() const = 0;
};

// A signed length of time in whole seconds, up to 68 years either way.
//
// The caller uses a span on one thread at a time; one that was moved from is only assigned to or destroyed.
// The span owns its implementation; a copy shares nothing with it. Construction and copying allocate.
//
//     TimeSpan const shift(0, 7, 30, 0);
//     UTCTime const end = start + shift;
class QMT_UTILU_API TimeSpan {
public:
    // Zero.
    TimeSpan();

    // The sum of the parts, of either sign, in seconds; a sum that 32 bits cannot hold wraps.
    TimeSpan(int days, int hours, int minutes, int seconds);

    // Takes ownership of `owned`, which is not null.
    explicit TimeSpan(TimeSpanImpInterface* owned);

    TimeSpan(TimeSpan const& other);
    TimeSpan(TimeSpan&& other) noexcept = default;
    TimeSpan& operator=(TimeSpan const& other);
    TimeSpan& operator=(TimeSpan&& other) noexcept = default;
    ~TimeSpan() = default;

    // The whole length in that unit, cut towards zero: -90 seconds are -1 minute and 0 hours.
    int GetTotalHours() const;
    int GetTotalMinutes() const;
    int GetTotalSeconds() const;

    bool operator>(TimeSpan const& other) const;
    bool operator<(TimeSpan const& other) const;
    bool operator==(TimeSpan const& other) const;

private:
    friend class PortableTime;

    std::unique_ptr<TimeSpanImpInterface> implementation;
};

// What a `PortableTime` holds. For those who supply values of their own.
class QMT_UTILU_API PortableTimeImpInterface {
public:
    virtual ~PortableTimeImpInterface() = default;

    // As the operations of `PortableTime` with these names.
    virtual int GetYear() const = 0;
    virtual int GetMonth() const = 0;
    virtual int GetDay() const = 0;
    virtual int GetHour() const = 0;
    virtual int GetMinute() const = 0;
    virtual int GetSecond() const = 0;
    virtual int GetDayOfWeek() const = 0;

    // The span from `other` to this value; the caller owns it. None of the arguments here is null.
    virtual TimeSpanImpInterface* Difference(PortableTimeImpInterface const* other) const = 0;
    virtual void Add(TimeSpanImpInterface const* span) = 0;
    virtual void Subtract(TimeSpanImpInterface const* span) = 0;

    virtual String LocalYMD() const = 0;
    virtual String LocalHM() const = 0;
};

// A moment of the Gregorian calendar, to the second and without a zone.
//
// The caller uses a value on one thread at a time; one that was moved from is only assigned to or destroyed.
// He sets the length of the time unit before other threads work with time units. The fields of a value are
// always those of a real date: what is out of range at construction is carried into the next larger field, so
// that 32 January is 1 February and month 13 the next January. Numbers are read as signed, so that 0 and -1
// carry backwards. Years up to two thousand million either way work. A value owns its implementation; a copy
// shares nothing with it. Construction and copying allocate once and do not enter the system. Nothing here
// fails.
//
//     PortableTime const now = PortableTime::GetSystemTimeNow();
//     String const stamp = now.YMDHMS(true); // 2024/03/05 14:07:09
class QMT_UTILU_API PortableTime {
public:
    // A replacement for the clock: gives the time that the application is to see. It may be called on any
    // thread, on several at once.
    using CurrentTimeModifier = PortableTime (*)();

    // Takes ownership of `owned`, which is not null.
    explicit PortableTime(PortableTimeImpInterface* owned) : implementation(owned) {}

    PortableTime(PortableTime const& other);
    PortableTime(PortableTime&& other) noexcept = default;
    PortableTime& operator=(PortableTime const& other);
    PortableTime& operator=(PortableTime&& other) noexcept = default;
    ~PortableTime() = default;

    // Month 1 to 12, day 1 to 31, hour 0 to 23, minute and second 0 to 59; day of week from 1, Sunday, to 7.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;

    // Compare field by field, from the year to the second, whatever the values stand for.
    bool operator<(PortableTime const& other) const;
    bool operator>(PortableTime const& other) const;
    bool operator>=(PortableTime const& other) const;
    bool operator==(PortableTime const& other) const;

    // The date, date and minute, or date and second: readable as 2024/03/05 14:07:09, otherwise the same
    // digits alone. A year has as many digits as it needs.
    String YMD(bool readable) const;
    String YMDHM(bool readable) const;
    String YMDHMS(bool readable) const;

    // The readable date. `slot`, unless null, is set to `GetTimeUnits()`.
    String GetDate(unsigned int* slot) const;

    // Day name, month name, day and year, or hour and minute, in the C library's current locale.
    String LocalYMD() const;
    String LocalHM() const;

    // The English name of the day.
    String GetDayOfWeekName() const;

    // The English name of a day from 1, Sunday, to 7; empty for any other number.
    static String DayToString(int dayOfWeek);

    // Which time unit of the day, counted from 0 at midnight, the value lies in.
    unsigned int GetTimeUnits() const;

    // Sets the length of a time unit in minutes, 30 until then. `minutes` is above 0. Takes effect at once,
    // also on existing values.
    static void SetTimeUnitMins(unsigned int minutes);
    static unsigned int TimeUnitMins();

    // The system's clock in UTC, whatever modifier is installed.
    static PortableTime GetSystemTimeNow();

    // Makes `modifier` the source of the current time, on all threads; null brings back the system's clock.
    // Gives the one beneath it, which the modifier may call for the time without itself, or null where that
    // is the system's clock. What is already in force is not installed twice. Modifiers stay until the
    // process ends. From any thread; waits while another thread holds the modifier section.
    static CurrentTimeModifier InstallCurrentTimeModifier(CurrentTimeModifier modifier);

    // While a thread is between these calls no other thread can install a modifier or fetch the current time.
    // Calls may be nested.
    static void EnterTimeModifierSection();
    static void LeaveTimeModifierSection();

    // Where the local zone's records take the current year from: the system's clock, or the time that the
    // application is to see, so that a modifier can stand in any year.
    enum class YearSource { SystemClock, CurrentTime };

    // Finds the records of the local zone, which is the one that the environment names at this moment, for
    // the current local year, the one before and the one after it. Conversions and the queries below rest on
    // them and on nothing else; without them the first conversion or query calls this. When there are records
    // already they are replaced as by `RefreshZone`. Zone data that was replaced on the disc behind the same
    // name the system may have read once and for all. Enters the system and reads files; the environment does
    // not change meanwhile. From any thread; one waits while another is at it, and the records of the call
    // that began last stay.
    static void InitialiseZone();
    static void InitialiseZone(YearSource source);

    // Finds the records anew, with the year from where `InitialiseZone` took it last, and puts all three in
    // force at once: a conversion on another thread meanwhile uses the old ones or the new ones. For programs
    // that run on into another year: the records do not follow the clock by themselves. Otherwise as
    // `InitialiseZone`.
    static void RefreshZone();

    // Frees the records, replaced ones included; the current year comes from the system's clock again, until
    // `InitialiseZone` says otherwise. No other thread uses local time or the zone meanwhile.
    static void Terminate();

    // Whether the zone changes its offset in the current year, the next, the past; not whether saving time
    // is in force now.
    static bool IsDST();
    static bool IsDST2();
    static bool IsDSTPast();

    // Local time minus UTC at the start of January and of June: of the current year, of the next (2), or of a
    // year given. A year that is not the current one is answered for as the next, past years too.
    static TimeSpan JanUtcOffset();
    static TimeSpan JanUtcOffset2();
    static TimeSpan JanUtcOffset(int year);
    static TimeSpan JunUtcOffset();
    static TimeSpan JunUtcOffset2();
    static TimeSpan JunUtcOffset(int year);

    // When the offset changes, by the wall clock in force until then: the first change behind 1 January and
    // the first behind 1 June. For the years as above; 2000/01/01 00:00:00 in a year without changes.
    static PortableTime FirstLocalChangeover();
    static PortableTime FirstLocalChangeover2();
    static PortableTime FirstLocalChangeover(int year);
    static PortableTime SecondLocalChangeover();
    static PortableTime SecondLocalChangeover2();
    static PortableTime SecondLocalChangeover(int year);

    // All that conversions of times in `year` rest on; outside the three years that is the nearest one.
    static ZoneYear GetZoneYear(int year);

protected:
    PortableTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                 unsigned int minute, unsigned int second);

    // The start of a time unit, which may lie beyond the end of the day.
    PortableTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot);

    // Reads what `YMD`, `YMDHM` and `YMDHMS` write for a year of four digits. A field that the text does not
    // reach, or that is no number there, is that of 2000/01/01 00:00:00.
    explicit PortableTime(String text);

    // The start of a time unit of the day that `date`, a readable date, tells; of 2000/01/01 when `date` has
    // not just 10 characters.
    PortableTime(String date, unsigned int slot);

    // The time that the application is to see: from the modifier in force, else from the system's clock.
    // Waits while another thread holds the modifier section; calls the modifier outside it.
    static PortableTime GetTimeNow();

    void Add(TimeSpan const& span);
    void Subtract(TimeSpan const& span);

    // The seconds from `other` to this value. Only the lower 32 bits count: beyond 68 years it wraps.
    TimeSpan Difference(PortableTime const& other) const;

private:
    friend class TimeAccess;

    std::unique_ptr<PortableTimeImpInterface> implementation;
};

} // namespace QMT
