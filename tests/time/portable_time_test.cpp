// Spans, calendar values and UTC, checked against the standard library's calendar.
#include "qmt/time/portable_time.h"
#include "qmt/time/utc_local_time.h"

#include <chrono>
#include <climits>
#include <cstddef>

#include "support/text.h"

namespace QMT {
namespace {

namespace chrono = std::chrono;

// Seconds since 1970; checks on the way that the fields are those of a real date and time.
std::int64_t Count(PortableTime const& time) {
    auto const date = chrono::year(time.GetYear()) / time.GetMonth() / time.GetDay();
    chrono::sys_days const day(date);
    int const hour = time.GetHour(), minute = time.GetMinute(), second = time.GetSecond();
    EXPECT_TRUE(date.ok() && hour / 24 == 0 && minute / 60 == 0 && second / 60 == 0) << time.GetYear();
    EXPECT_EQ(time.GetDayOfWeek(), int(chrono::weekday(day).c_encoding()) + 1) << time.GetYear();
    return ((day.time_since_epoch().count() * 24L + hour) * 60 + minute) * 60 + second;
}

UTCTime Build(int year, int month, int day, int hour, int minute, int second) {
    return UTCTime(unsigned(year), unsigned(month), unsigned(day), unsigned(hour), unsigned(minute),
                   unsigned(second));
}

TEST(PortableTime, AgreesWithTheStandardCalendar) {
    std::mt19937 random = SeededGenerator();
    auto const pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    auto const field = [&](int low, int high) {
        int const outside = std::array{0, 0, 0, 1, 5000}[static_cast<std::size_t>(pick(0, 4))];
        return pick(low - outside, high + outside);
    };
    UTCTime last;
    std::int64_t lastCount = Count(last);
    for (int round = 0; round < 30000 && !HasFailure(); ++round) {
        int const year = round % 3 == 0 ? pick(-290, 290) * 100 : pick(-29000, 29000), month = field(1, 12),
                  day = field(1, 31), hour = field(0, 23), minute = field(0, 59), second = field(0, 59);
        UTCTime const time = Build(year, month, day, hour, minute, second);
        chrono::sys_days const monthStart(chrono::year(year) / 1 / 1 + chrono::months(month - 1));
        std::int64_t const days = monthStart.time_since_epoch().count() + day - 1;
        std::int64_t const count = ((days * 24 + hour) * 60 + minute) * 60 + second;
        EXPECT_EQ(Count(time), count) << year << ' ' << month << ' ' << day;
        EXPECT_EQ((time - last).GetTotalSeconds(), static_cast<std::int32_t>(count - lastCount));
        EXPECT_EQ(time < last, count < lastCount);
        EXPECT_EQ(time > last, count > lastCount);
        int const span = pick(INT_MIN, INT_MAX);
        EXPECT_EQ(Count(time + TimeSpan(0, 0, 0, span)), count + span);
        last = time;
        last -= TimeSpan(0, 0, 0, span);
        EXPECT_EQ(Count(last), lastCount = count - span);
        EXPECT_EQ(Count(time), count) << "a copy shares its value";
    }
}

TEST(PortableTime, CarriesAtTheEdges) {
    EXPECT_EQ(UTCTime(2024, 13, 32, 24, 60, 60).YMDHMS(true), u"2025/02/02 01:01:00");
    EXPECT_EQ(UTCTime(2024, 0, 0, 0, 0, UINT_MAX).YMDHMS(true), u"2023/11/29 23:59:59");
    EXPECT_EQ((Build(-1, 12, 31, 23, 59, 59) + TimeSpan(0, 0, 0, 1)).YMDHMS(true), u"0/01/01 00:00:00");
    EXPECT_EQ(Build(INT_MAX, 12, 31, 23, 59, 59).YMDHMS(true), u"2147483647/12/31 23:59:59");
    EXPECT_EQ(Build(-2000000000, 2, 29, 0, 0, 0).YMDHMS(true), u"-2000000000/02/29 00:00:00");
    for (int const extreme : {INT_MIN, INT_MAX}) {
        UTCTime const time = Build(extreme, extreme, extreme, extreme, extreme, extreme);
        EXPECT_TRUE(UTCTime(time + TimeSpan(0, 0, 0, extreme)) == time + TimeSpan(0, 0, 0, extreme));
    }
}

TEST(PortableTime, TextGoesOutAndComesBack) {
    UTCTime const time(2024, 3, 5, 14, 7, 9);
    EXPECT_EQ(Joined(time.YMD(true), time.YMDHM(true), time.YMDHMS(true)),
              u"2024/03/05|2024/03/05 14:07|2024/03/05 14:07:09|");
    EXPECT_EQ(Joined(time.YMD(false), time.YMDHM(false), time.YMDHMS(false)),
              u"20240305|202403051407|20240305140709|");
    String names = Joined(time.LocalYMD(), time.LocalHM(), time.GetDayOfWeekName());
    for (int day = 0; day <= 8; ++day)
        names += PortableTime::DayToString(day).Left(2) + u"|";
    EXPECT_EQ(names, u"Tuesday Mar 05 2024|14:07|Tuesday||Su|Mo|Tu|We|Th|Fr|Sa||");
    auto const fieldsReadFromPrefixes = [](String const& text) {
        String counts;
        for (std::size_t length = 0; length <= text.Len(); ++length) {
            UTCTime const read(text.Left(length));
            counts << (read.GetYear() == 2024) + (read.GetMonth() == 3) + (read.GetDay() == 5) +
                          (read.GetHour() == 14) + (read.GetMinute() == 7) + (read.GetSecond() == 9);
        }
        return counts;
    };
    EXPECT_EQ(fieldsReadFromPrefixes(u"20240305140709 "), u"0000000033335565");
    EXPECT_EQ(fieldsReadFromPrefixes(u"2024/03-05T14.07_09 "), u"000000000033333355565");
    EXPECT_EQ(UTCTime(String()).YMDHMS(true), u"2000/01/01 00:00:00");
    EXPECT_EQ(UTCTime(u"2024/00/31 24:60:61").YMDHMS(true), u"2024/01/01 01:01:01");
    EXPECT_EQ(UTCTime(u"year/03/-5 1x:08:61").YMDHMS(true), u"2000/03/01 00:09:01");
}

TEST(TimeSpan, TotalsAndOrder) {
    auto const totals = [](TimeSpan const& span) {
        return std::array{span.GetTotalHours(), span.GetTotalMinutes(), span.GetTotalSeconds()};
    };
    EXPECT_EQ(totals(TimeSpan(1, 2, 3, 4)), (std::array{26, 1563, 93784}));
    EXPECT_EQ(totals(TimeSpan(0, 0, 0, -90)), (std::array{0, -1, -90}));
    EXPECT_EQ(totals(TimeSpan(0, 0, 0, INT_MIN)), (std::array{-596523, -35791394, INT_MIN}));
    EXPECT_EQ(totals(TimeSpan(24856, 0, 0, 0)), (std::array{-596502, -35790148, -2147408896})) << "wraps";
    TimeSpan const less(0, 0, 0, 59), more(0, 0, 1, 0);
    EXPECT_TRUE(less < more && more > less && !(more < less) && !(less > less) && !(less == more));
    TimeSpan copy = less;
    copy = *&copy;
    EXPECT_TRUE(copy == less && (copy = more) == more && copy > TimeSpan());
}

// What a client might supply: 29 February 2024, 12:30:15.
struct ForeignTime : PortableTimeImpInterface {
    int GetYear() const override { return 2024; }

    int GetMonth() const override { return 2; }

    int GetDay() const override { return 29; }

    int GetHour() const override { return 12; }

    int GetMinute() const override { return 30; }

    int GetSecond() const override { return 15; }

    int GetDayOfWeek() const override { return 0; }

    TimeSpanImpInterface* Difference(PortableTimeImpInterface const*) const override { return nullptr; }

    void Add(TimeSpanImpInterface const* span) override { lastSpan = span; }

    void Subtract(TimeSpanImpInterface const* span) override { isLastSpan = span->IsEqual(lastSpan); }

    String LocalYMD() const override { return String(); }

    String LocalHM() const override { return String(); }

    TimeSpanImpInterface const* lastSpan = nullptr;
    bool isLastSpan = false;
};

struct OpenTime : PortableTime {
    using PortableTime::Add, PortableTime::Subtract, PortableTime::Difference, PortableTime::PortableTime;
};

TEST(PortableTime, ForeignImplementations) {
    auto* const implementation = new ForeignTime;
    OpenTime foreign(implementation), copy(foreign);
    EXPECT_EQ(Count(copy), 1709209815);
    EXPECT_TRUE(copy == foreign && copy >= foreign && !(copy > foreign));
    EXPECT_TRUE(copy.Difference(foreign) == TimeSpan());
    TimeSpan const minute(0, 0, 1, 0);
    for (int const seconds : {60, 61}) {
        foreign.Add(minute);
        foreign.Subtract(TimeSpan(0, 0, 0, seconds));
        EXPECT_EQ(implementation->isLastSpan, seconds == 60);
    }
}

PortableTime LeapDay() {
    std::thread([] { // hangs when the section is held over this call
        PortableTime::EnterTimeModifierSection();
        PortableTime::LeaveTimeModifierSection();
    })
        .join();
    return PortableTime(new ForeignTime);
}

PortableTime DayLater() {
    return UTCTime(LeapDay().YMDHMS(true)) + TimeSpan(1, 0, 0, 0);
}

TEST(UTCTime, CurrentTimeAndItsModifiers) {
    PortableTime::InstallCurrentTimeModifier(nullptr);
    EXPECT_EQ(PortableTime::InstallCurrentTimeModifier(LeapDay), nullptr);
    EXPECT_EQ((UTCTime::GetTimeNow() + TimeSpan(0, 0, 0, 1)).YMDHMS(true), u"2024/02/29 12:30:16");
    EXPECT_EQ(PortableTime::InstallCurrentTimeModifier(LeapDay), nullptr) << "installed twice";
    EXPECT_EQ(PortableTime::InstallCurrentTimeModifier(DayLater), LeapDay);
    EXPECT_EQ(PortableTime::InstallCurrentTimeModifier(DayLater), LeapDay) << "installed twice";
    EXPECT_EQ(UTCTime::GetTimeNow().YMDHMS(true), u"2024/03/01 12:30:15");
    auto const clock = [] { return chrono::system_clock::to_time_t(chrono::system_clock::now()); };
    auto const before = clock(), system = Count(UTCTime::GetSystemTimeNow());
    EXPECT_EQ(PortableTime::InstallCurrentTimeModifier(nullptr), DayLater);
    auto const now = Count(UTCTime::GetTimeNow()), after = clock();
    EXPECT_TRUE(before <= system && system <= now && now <= after);
}

} // namespace
} // namespace QMT
