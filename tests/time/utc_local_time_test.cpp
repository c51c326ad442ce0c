// UTC and the wall clock: conversions, arithmetic, time units.
#include "qmt/time/utc_local_time.h"

#include "qmt/time/time_zone.h"
#include "support/text.h"
#include "support/zone_scope.h"

namespace QMT {
namespace {

constexpr char const* india = "IST-5:30";

TEST(LocalTime, ReadingsAroundTheChanges) {
    ZoneScope const zone(berlin, UTCTime(2024, 6, 1, 0));
    using enum ReadingKind;

    // A reading, what it means, what that reads, and what else it can mean.
    struct {
        char16_t const *local, *utc, *again;
        ReadingKind kind;
        char16_t const* later;
    } const cases[] = {{u"0331015959", u"0331005959", u"0331015959", Unique, u"0331005959"},
                       {u"0331020000", u"0331000000", u"0331010000", Skipped, u"0331010000"},
                       {u"0331023000", u"0331003000", u"0331013000", Skipped, u"0331013000"},
                       {u"0331030000", u"0331010000", u"0331030000", Unique, u"0331010000"},
                       {u"1027015959", u"1026235959", u"1027015959", Unique, u"1026235959"},
                       {u"1027020000", u"1027000000", u"1027020000", Repeated, u"1027010000"},
                       {u"1027025959", u"1027005959", u"1027025959", Repeated, u"1027015959"},
                       {u"1027030000", u"1027020000", u"1027030000", Unique, u"1027020000"}};

    for (auto const& [local, utc, again, kind, later] : cases) {
        LocalTime const reading(String(u"2024") + local);
        UTCTime const moment(reading);
        LocalReading const meaning = reading.Classify();
        EXPECT_EQ(meaning.kind, kind) << reading.GetHour();
        EXPECT_EQ(Joined(moment.YMDHMS(false), meaning.earlier.YMDHMS(false), meaning.later.YMDHMS(false),
                         LocalTime(moment).YMDHMS(false)),
                  String(u"2024") + utc + u"|2024" + utc + u"|2024" + later + u"|2024" + again + u"|");
    }
    EXPECT_EQ(LocalTime(UTCTime(2024, 3, 31, 0, 59, 59)).YMDHMS(true), u"2024/03/31 01:59:59");
    EXPECT_EQ(LocalTime(UTCTime(2024, 10, 27, 1, 30, 0)).YMDHMS(true), u"2024/10/27 02:30:00");
    String hours; // in July, from the year before the records to the one behind them
    for (unsigned int year = 2022; year <= 2026; ++year)
        hours << LocalTime(UTCTime(year, 7, 1, 0)).GetHour() << UTCTime(LocalTime(year, 7, 1, 0)).GetHour()
              << u"|";
    EXPECT_EQ(hours, u"123|222|222|222|123|");
}

TEST(LocalTime, ArithmeticCountsTheTimeThatPasses) {
    ZoneScope const zone(berlin, UTCTime(2024, 6, 1, 0));
    TimeSpan const hour(0, 1, 0, 0);
    LocalTime const early(2024, 3, 31, 1, 30, 0), late = early + hour;
    EXPECT_EQ(Joined(late.YMDHM(true), (late - hour).YMDHM(true)), u"2024/03/31 03:30|2024/03/31 01:30|");
    EXPECT_EQ((late - early).GetTotalMinutes(), 120);
    EXPECT_EQ((UTCTime(late) - UTCTime(early)).GetTotalMinutes(), 60);
    LocalTime moved(2024, 10, 27, 2, 30, 0);
    EXPECT_EQ((moved += TimeSpan(0, 2, 0, 0)).YMDHM(true), u"2024/10/27 03:30");
    EXPECT_EQ((moved -= hour).YMDHM(true), u"2024/10/27 02:30") << "the second pass";
    EXPECT_TRUE(early < late && late > early && !(early == late) && early == LocalTime(u"202403310130"));
}

// Day and time of the unit before, the own one and the next, then rounded down and up to 15 minutes.
template <class Time>
String UnitsOf(Time const& value) {
    Time down = value, up = value;
    down.RoundDownMinutes(15);
    up.RoundUpMinutes(15);
    String text;
    for (auto const& each : {value.PrevTimeUnit(), value.GetTimeSlot(), value.NextTimeUnit(), down, up}) {
        text << each.YMDHM(true).Mid(8) << u"|";
        EXPECT_EQ(each.GetSecond(), value.GetSecond());
    }
    return text;
}

// Beside a year that the search takes for unchanging, at New Year 2030.
TEST(LocalTime, RecordsThatDisagreeAtNewYear) {
    if (SystemNameOf("Africa/Casablanca").empty())
        GTEST_SKIP() << "Windows has no zone with the changes of Africa/Casablanca";
    ZoneScope const zone("Africa/Casablanca", UTCTime(2029, 7, 1, 0));
    LocalTime const reading(2030, 1, 1, 0, 30, 0);
    EXPECT_EQ(UTCTime(reading).YMDHM(true), u"2030/01/01 00:30");
    EXPECT_EQ(LocalTime(UTCTime(2029, 12, 31, 23, 30, 0)).YMDHM(true), u"2030/01/01 00:30");
    EXPECT_EQ(reading.Classify().kind, ReadingKind::Repeated);
    EXPECT_TRUE(reading >= UTCTime(2029, 12, 31, 23, 30, 0) && !(reading >= UTCTime(2030, 1, 1, 1, 30, 0)));
}

TEST(LocalTime, TimeUnitsAndRounding) {
    struct {
        char const* zone; // null for UTC
        unsigned int unit;
        char16_t const *value, *expected;
    } const cases[] = {{nullptr, 30, u"20240101100712", u"01 09:30|01 10:00|01 10:30|01 10:00|01 10:15|"},
                       {nullptr, 30, u"20240101100030", u"01 09:30|01 10:00|01 10:30|01 10:00|01 10:00|"},
                       {nullptr, 30, u"202412312350", u"31 23:00|31 23:30|01 00:00|31 23:45|01 00:00|"},
                       {nullptr, 25, u"202401011057", u"01 10:25|01 10:50|01 11:15|01 10:45|01 11:00|"},
                       {nullptr, 90, u"202401010120", u"31 23:30|01 01:00|01 02:30|01 01:15|01 01:30|"},
                       {india, 60, u"20240101100712", u"01 08:30|01 10:00|01 10:30|01 10:00|01 10:15|"},
                       {india, 20, u"202412312350", u"31 23:30|31 23:40|01 00:10|31 23:45|01 00:00|"},
                       {berlin, 30, u"202403310145", u"31 01:00|31 01:30|31 03:00|31 01:45|31 01:45|"},
                       {berlin, 30, u"20241027031009", u"27 02:30|27 03:00|27 03:30|27 03:00|27 03:15|"}};

    for (auto const& [name, unit, value, expected] : cases) {
        ZoneScope const zone(name ? name : india, UTCTime(2024, 6, 1, 0));
        PortableTime::SetTimeUnitMins(unit);
        EXPECT_EQ(name ? UnitsOf(LocalTime(value)) : UnitsOf(UTCTime(value)), expected);
    }
    PortableTime::SetTimeUnitMins(30);
    EXPECT_EQ(Joined(TimeUnitToTime(3, 0), TimeUnitToTime(3, 60), TimeUnitToTime(48, 0), TimeUnitToTime(0, 5),
                     TimeUnitToTime(0, 90)),
              u"01:30|00:30|24:00|00:-5|-1:-30|");
    unsigned int slot = 0;
    UTCTime const time(2024, 3, 5, 14, 29, 59);
    EXPECT_EQ(Joined(time.GetDate(&slot), time.GetDate(nullptr), slot,
                     (time + TimeSpan(0, 0, 0, 1)).GetTimeUnits()),
              u"2024/03/05|2024/03/05|28|29|");
    EXPECT_EQ(Joined(UTCTime(2024, 2, 28, 49).YMDHM(true), UTCTime(u"2024/02/2", 3).YMDHM(true),
                     UTCTime(u"2024/02/29 ", 3).YMDHM(true), LocalTime(u"2024/02/29", 49).YMDHM(true),
                     LocalTime(2024, 2, 28, 48).YMDHM(true), LocalTime().YMDHM(true)),
              u"2024/02/29 00:30|2000/01/01 01:30|2000/01/01 01:30|2024/03/01 00:30|2024/02/29 00:00|"
              u"2000/01/01 00:00|");
}

TEST(LocalTime, NowIsTheApplicationsTime) {
    ZoneScope const zone("EST5", UTCTime(2024, 3, 1, 2, 7, 9));
    EXPECT_EQ(Joined(LocalTime::GetTimeNow().YMDHMS(true), LocalTime::GetTodayStart().YMDHMS(true)),
              u"2024/02/29 21:07:09|2024/02/29 00:00:00|");
    DebugOutput output;
    LogToIDETime(u"Started");
    EXPECT_EQ(output.Take(), "Started at 2024/02/29 21:07:09\n");
}

} // namespace
} // namespace QMT
