// The records of the local zone: what the search finds, when it runs, how they are replaced.
#include "qmt/time/time_zone.h"

#include <cstddef>

#include "support/text.h"
#include "support/zone_scope.h"

namespace QMT {
namespace {

TEST(TimeZone, FindsTheChangesOfAYear) {
    // January's and June's offset, the two changes by the wall clock, the two in UTC.
    struct {
        unsigned int year;
        char const* zone;
        char16_t const* expected;
    } const cases[] = {
        {2024, "UTC0", u"0|0|"},
        {2024, "IST-5:30", u"19800|19800|"},
        {2024, berlin, u"3600|7200|2024/03/31 02:00|2024/10/27 03:00|2024/03/31 01:00|2024/10/27 01:00|"},
        {2024, "AEST-10AEDT,M10.1.0,M4.1.0/3",
         u"39600|36000|2024/04/07 03:00|2024/10/06 02:00|2024/04/06 16:00|2024/10/05 16:00|"},
        // Off the half hours, at 00:01: found at the next one.
        {2024, "NST3:30NDT,M4.1.0/0:01,M10.5.0/0:01",
         u"-12600|-9000|2024/04/07 00:30|2024/10/27 00:30|2024/04/07 04:00|2024/10/27 03:00|"},
        // Less than a minute apart, which minutes would never tell; the clock's seconds are dropped.
        {2024, "AAA-0:00:10BBB-0:00:40,M4.1.0,M10.1.0",
         u"10|40|2024/04/07 02:00|2024/10/06 01:59|2024/04/07 01:59|2024/10/06 01:58|"},
        // A spell between two steps of 30 days.
        {2024, "AAA0BBB,J151/0,J160/0",
         u"0|3600|2024/05/31 00:00|2024/06/09 00:00|2024/05/31 00:00|2024/06/08 23:00|"},
        // A year whose first hour is skipped.
        {2004, "Asia/Khandyga",
         u"36000|39600|2004/03/28 02:00|2004/10/31 03:00|2004/03/27 16:00|2004/10/30 16:00|"},
        // For good, east and west of Greenwich: June's offset holds to the end of the year in UTC too.
        {2016, "Europe/Istanbul",
         u"7200|10800|2016/03/27 03:00|2017/01/01 00:00|2016/03/27 01:00|2017/01/01 00:00|"},
        {2015, "America/Cancun",
         u"-21600|-18000|2015/02/01 02:00|2016/01/01 00:00|2015/02/01 08:00|2016/01/01 05:00|"}};

    for (auto const& [year, name, expected] : cases) {
        if (SystemNameOf(name).empty()) {
            std::cout << "the system has no zone " << name << '\n';
            continue;
        }
        ZoneScope const zone(name, UTCTime(year, 7, 1, 0));
        ZoneYear const facts = PortableTime::GetZoneYear(int(year));
        String text = Joined(facts.janOffset.GetTotalSeconds(), facts.junOffset.GetTotalSeconds());
        if (facts.hasChangeovers)
            for (auto const& time : {facts.firstLocalChangeover, facts.secondLocalChangeover,
                                     facts.firstUtcChangeover, facts.secondUtcChangeover})
                text << time.YMDHM(true) << u"|";
        EXPECT_EQ(text, expected) << name;
    }
}

// Each query's answer, in the order of its declaration; the queries of a year are asked for `year`.
String Answers(int year) {
    using Time = PortableTime;
    String text = Joined(int{Time::IsDST()}, int{Time::IsDST2()}, int{Time::IsDSTPast()});
    for (auto const& span : {Time::JanUtcOffset(), Time::JanUtcOffset2(), Time::JanUtcOffset(year),
                             Time::JunUtcOffset(), Time::JunUtcOffset2(), Time::JunUtcOffset(year)})
        text << span.GetTotalHours() << u"|";
    for (auto const& time :
         {Time::FirstLocalChangeover(), Time::FirstLocalChangeover2(), Time::FirstLocalChangeover(year),
          Time::SecondLocalChangeover(), Time::SecondLocalChangeover2(), Time::SecondLocalChangeover(year)})
        text << time.YMD(false) << u"|";
    return text;
}

TEST(TimeZone, QueriesAnswerFromTheCurrentYearOrTheNext) {
    ZoneScope zone("Europe/Istanbul", UTCTime(2015, 7, 1, 0)); // 25 October to 8 November; for good in 2016
    EXPECT_EQ(Answers(2015), u"1|1|1|2|2|2|3|3|3|20150329|20160327|20150329|20151108|20170101|20151108|");
    String const next = u"1|1|1|2|2|2|3|3|3|20150329|20160327|20160327|20151108|20170101|20170101|";
    EXPECT_EQ(Answers(2014), next) << "a year in the past";
    EXPECT_EQ(Answers(2016), next);
    zone.StandAt(UTCTime(2016, 7, 1, 0));
    PortableTime::RefreshZone();
    EXPECT_EQ(Answers(2016), u"1|0|1|2|3|2|3|3|3|20160327|20000101|20160327|20170101|20000101|20170101|");
    EXPECT_EQ(PortableTime::GetZoneYear(1999).secondLocalChangeover.YMD(true), u"2015/11/08");
    EXPECT_FALSE(PortableTime::GetZoneYear(2040).hasChangeovers);
}

TEST(TimeZone, RecordsStayUntilTheyAreAskedAnew) {
    ZoneScope const zone("CST6", UTCTime(2024, 12, 31, 23, 0, 0));
    auto const hourAndYear = [] {
        LocalTime const summer(UTCTime(2024, 7, 1, 12, 0, 0));
        return Joined(summer.GetHour(), PortableTime::FirstLocalChangeover().GetYear());
    };
    ZoneScope::SetZone(berlin);
    EXPECT_EQ(hourAndYear(), u"6|2000|") << "the environment has been looked at";
    PortableTime::RefreshZone();
    EXPECT_EQ(hourAndYear(), u"14|2025|") << "it is 2025 by the wall clock";
    PortableTime::Terminate();
    ZoneScope::SetZone("IST-5:30"); // looked at by the first conversion
    int const year = LocalTime(UTCTime::GetSystemTimeNow()).GetYear();
    ZoneScope::SetZone(berlin);
    EXPECT_EQ(hourAndYear(), u"17|2000|");
    PortableTime::RefreshZone();
    EXPECT_NEAR(PortableTime::FirstLocalChangeover().GetYear(), year, 1) << "the system's";
    PortableTime::Terminate();
    // A modifier that needs the zone itself.
    PortableTime::InstallCurrentTimeModifier(
        []() -> PortableTime { return UTCTime(LocalTime(2031, 1, 1, 12, 0, 0)); });
    PortableTime::InitialiseZone(PortableTime::YearSource::CurrentTime);
    EXPECT_EQ(hourAndYear(), u"13|2031|");
}

TEST(TimeZone, OfTwoCallsTheOneThatBeganLastDecides) {
    ZoneScope const zone(berlin, UTCTime(2024, 7, 1, 0));
    static bool isFirst;
    isFirst = true;
    PortableTime::InstallCurrentTimeModifier([]() -> PortableTime {
        if (!std::exchange(isFirst, false))
            return UTCTime(2025, 1, 1, 0);
        PortableTime::RefreshZone(); // begins later and ends before
        return UTCTime(2024, 12, 31, 0);
    });
    PortableTime::RefreshZone();
    EXPECT_EQ(PortableTime::FirstLocalChangeover().GetYear(), 2025);
}

TEST(TimeZone, ThreadsConvertWhileRecordsAreReplaced) {
    ZoneScope zone(berlin, UTCTime(2024, 7, 1, 0));
    std::array<std::atomic<int>, 24> seen{}; // how often which hour
    std::atomic<bool> done{false};
    auto const convert = [&, noon = UTCTime(2024, 7, 1, 12, 0, 0)] {
        while (!done)
            ++seen[std::size_t(LocalTime(noon).GetHour())];
    };
    std::thread first(convert), second(convert);
    for (int refresh = 0; refresh < 40; ++refresh) {
        // Records of 2027 know but January's offset for July 2024, an hour less.
        zone.StandAt(UTCTime(refresh % 2 ? 2024 : 2027, 7, 1, 0));
        PortableTime::RefreshZone();
        auto const& count = seen[refresh % 2 ? 14 : 13];
        for (int const before = count; count < before + 9;) // hangs when no thread finds the new records
            std::this_thread::yield();
    }
    done = true;
    first.join();
    second.join();
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 22) << "records mixed";
}

// Counts are seconds since 1970, those of readings as if they were UTC.
constexpr std::int64_t hour = 3600, day = 24 * hour;

UTCTime Utc(std::int64_t count) {
    return ZoneScope::Epoch() + TimeSpan(0, 0, 0, static_cast<int>(count));
}

LocalTime Local(std::int64_t reading) {
    UTCTime const same = Utc(reading);
    return LocalTime(unsigned(same.GetYear()), unsigned(same.GetMonth()), unsigned(same.GetDay()),
                     unsigned(same.GetHour()), unsigned(same.GetMinute()), unsigned(same.GetSecond()));
}

std::int64_t MonthStart(int year, unsigned int month) {
    return (UTCTime(unsigned(year), month, 1, 0) - ZoneScope::Epoch()).GetTotalSeconds();
}

// Finds the changes of a year and some days around it, and tells what they are like; in brackets where the
// search may find them inexactly.
std::string FindChanges(int year, std::vector<std::int64_t>& changes) {
    std::int64_t const start = MonthStart(year, 1), end = MonthStart(year + 1, 1);
    bool isNewYear = false, isShort = false, isOff = false;
    std::int64_t last = start - 31 * day, inYear = 0;
    for (std::int64_t time = start - day; time < end + 31 * day; time += hour) {
        std::int64_t low = time, high = time + hour;
        std::int64_t const before = SystemOffset(low);
        if (before == SystemOffset(high))
            continue;
        while (high - low > 1)
            (SystemOffset((low + high) / 2) == before ? low : high) = (low + high) / 2;
        isNewYear |= std::min(std::abs(high - start), std::abs(high - end)) <= day;
        isShort |= high - last < 30 * day;
        isOff |= high < end && (high + before) % 1800 != 0;
        inYear += high < end ? 1 : 0;
        changes.push_back(last = high);
    }
    std::int64_t const june = MonthStart(year, 6), jan = SystemOffset(start);
    // Behind the gap where the start is skipped.
    std::int64_t const jun =
        SystemOffset(std::max(june - SystemOffset(june - day), june - SystemOffset(june + day)));
    return isNewYear                  ? "(change within a day of New Year)"
           : inYear == 0              ? "unchanging"
           : isOff                    ? "(change off the half hours)"
           : inYear > 2               ? "(more than two changes)"
           : jan == jun               ? "(January and June alike)"
           : inYear == 1              ? "one change"
           : SystemOffset(end) != jan ? "(does not lead back)"
           : isShort                  ? "(spell shorter than 30 days)"
                                      : "two changes";
}

// A reading is taken by the clock in front of a change as long as that one shows it, then by the one behind.
// The record of `year` answers for the moments and readings in it.
bool ReadingAgrees(std::int64_t reading, std::int64_t before, std::int64_t after, int year) {
    bool const isBefore = SystemOffset(reading - before) == before;
    bool const isAfter = SystemOffset(reading - after) == after;
    ReadingKind const kind = before == after || isBefore != isAfter ? ReadingKind::Unique
                             : isBefore                             ? ReadingKind::Repeated
                                                                    : ReadingKind::Skipped;
    LocalTime const local = Local(reading);
    int const date = local.GetMonth() * 100 + local.GetDay(); // at New Year kinds depend on other records
    return local.GetYear() != year || (UTCTime(local) == Utc(reading - (isBefore ? before : after)) &&
                                       (date < 103 || date > 1229 || local.Classify().kind == kind));
}

// Of a moment and of what the clocks in front of a change nearby and behind it read.
bool Agrees(std::int64_t moment, int year) {
    std::int64_t const before = SystemOffset(moment - day), after = SystemOffset(moment + day);
    UTCTime const utc = Utc(moment);
    return (utc.GetYear() != year || LocalTime(utc) == Local(moment + SystemOffset(moment))) &&
           ReadingAgrees(moment + before, before, after, year) &&
           (before == after || ReadingAgrees(moment + after, before, after, year));
}

// Tries one year of each zone at every seventh hour; with QMT_ZONE_ORACLE=all every year from 1970 to 2037 at
// every hour, which takes some minutes.
TEST(TimeZone, AgreesWithTheSystemInEveryZone) {
    bool const all = std::getenv("QMT_ZONE_ORACLE") != nullptr;
    std::mt19937 random = SeededGenerator();
    auto const pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    ZoneScope zone("UTC0", ZoneScope::Epoch());
    std::map<std::string, int> counts;
    for (auto const& [data, name] : SystemZones()) {
        ZoneScope::SetZone(name.c_str());
        int const first = all ? 1970 : pick(1970, 2037), last = all ? 2037 : first;
        for (int year = first; year <= last; ++year) {
            // The year's record is any of the three; where they end conversions are not exact.
            int const current = std::min(year + pick(-1, 1), 2037);
            std::int64_t const margin = current == year ? -day : day, end = MonthStart(year + 1, 1) - margin;
            zone.StandAt(UTCTime(unsigned(current), 7, 1, 0));
            PortableTime::InitialiseZone(PortableTime::YearSource::CurrentTime);
            std::vector<std::int64_t> moments;
            std::string const kind =
                name.starts_with("right/") ? "(leap seconds)" : FindChanges(year, moments);
            ++counts[kind];
            if (kind.starts_with('('))
                continue;
            for (std::size_t i = moments.size(); i-- > 0;)
                moments.push_back(moments[i] - 1);
            for (std::int64_t time = MonthStart(year, 1) + margin; time < end; time += all ? hour : 7 * hour)
                moments.push_back(time);
            EXPECT_TRUE(std::all_of(moments.begin(), moments.end(), [&](auto m) { return Agrees(m, year); }))
                << name << ' ' << year << ": " << kind;
        }
    }
    for (auto const& [kind, count] : counts)
        std::cout << count << ' ' << kind << '\n';
}

} // namespace
} // namespace QMT
