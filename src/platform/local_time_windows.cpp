#include "platform/local_time.h"

#include <windows.h>

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/zone_rules_windows.h"

namespace QMT::platform {

namespace {

namespace chrono = std::chrono;

constexpr std::int64_t day = 24 * 3600;

// What Windows can express of a year.
constexpr int firstYear = 1601;
constexpr int lastYear = 30827;

// The clock in force until the change reads so; in seconds since 1970 as if it were UTC.
std::int64_t ReadingOf(SYSTEMTIME const& change, int year) {
    std::int64_t const days = change.wYear != 0
                                  ? chrono::sys_days(chrono::year(change.wYear) /
                                                     chrono::month(change.wMonth) / chrono::day(change.wDay))
                                        .time_since_epoch()
                                        .count()
                                  : DayOfWeekInMonth(year, change.wMonth, change.wDay, change.wDayOfWeek);
    // The last millisecond of a day stands for the day's end.
    std::int64_t const second = change.wSecond + (change.wMilliseconds >= 500 ? 1 : 0);
    return days * day + (change.wHour * 60 + change.wMinute) * 60 + second;
}

YearRule ToRule(TIME_ZONE_INFORMATION const& zone, int year) {
    YearRule rule;
    bool const changes = zone.StandardDate.wMonth != 0 && zone.DaylightDate.wMonth != 0;
    rule.standardOffset = -60 * std::int64_t{zone.Bias + (changes ? zone.StandardBias : 0)};
    if (changes) {
        rule.savingOffset = -60 * std::int64_t{zone.Bias + zone.DaylightBias};
        rule.savingStarts = ReadingOf(zone.DaylightDate, year) - rule.standardOffset;
        rule.savingEnds = ReadingOf(zone.StandardDate, year) - rule.savingOffset;
    }
    return rule;
}

// What the zone holds of itself, which is for this year.
TIME_ZONE_INFORMATION FactsOf(DYNAMIC_TIME_ZONE_INFORMATION const& zone) {
    TIME_ZONE_INFORMATION facts{};
    facts.Bias = zone.Bias;
    facts.StandardDate = zone.StandardDate;
    facts.StandardBias = zone.StandardBias;
    facts.DaylightDate = zone.DaylightDate;
    facts.DaylightBias = zone.DaylightBias;
    return facts;
}

// A zone without a name, or whose changes the user has turned off, has the same facts in all years.
ZoneRules RulesOf(DYNAMIC_TIME_ZONE_INFORMATION const& zone) {
    return [zone](int year) {
        DYNAMIC_TIME_ZONE_INFORMATION asked = zone; // which the call does not take as const
        TIME_ZONE_INFORMATION ofYear{};
        bool const knowsYears = !zone.DynamicDaylightTimeDisabled && zone.TimeZoneKeyName[0] &&
                                GetTimeZoneInformationForYear(static_cast<USHORT>(year), &asked, &ofYear);
        return ToRule(knowsYears ? ofYear : FactsOf(zone), year);
    };
}

ZoneRules RulesOfMachine() {
    DYNAMIC_TIME_ZONE_INFORMATION zone{};
    GetDynamicTimeZoneInformation(&zone);
    return RulesOf(zone);
}

std::optional<ZoneRules> RulesOfName(std::wstring_view name) {
    DYNAMIC_TIME_ZONE_INFORMATION zone{};
    for (DWORD index = 0; EnumDynamicTimeZoneInformation(index, &zone) == ERROR_SUCCESS; ++index)
        if (name == zone.TimeZoneKeyName)
            return RulesOf(zone);
    return std::nullopt;
}

// Empty when it is not set.
std::wstring ZoneVariable() {
    std::wstring value(1, L'\0');
    DWORD size = 0;
    while ((size = GetEnvironmentVariableW(L"TZ", value.data(), static_cast<DWORD>(value.size()))) >=
           value.size())
        value.resize(size + std::size_t{1});
    value.resize(size);
    return value;
}

ZoneRules RulesOfEnvironment() {
    std::wstring const name = ZoneVariable();
    std::string text; // no rule holds anything but ASCII
    for (wchar_t const unit : name)
        text += unit < 0x80 ? static_cast<char>(unit) : '?';
    std::optional<ZoneRules> rules = RulesOfText(text);
    if (!rules && !name.empty())
        rules = RulesOfName(name);
    return rules ? *rules : RulesOfMachine();
}

// The zone in force, with the rules of the years that were asked for.
class LocalZone {
public:
    LocalZone() : rules(RulesOfEnvironment()) {}

    void ReadAnew() {
        rules = RulesOfEnvironment();
        known.clear();
    }

    // Empty for a moment in a year that Windows cannot express.
    YearRule const* RuleAt(std::int64_t utcSeconds) {
        YearRule const* const likely = RuleOf(YearOf(utcSeconds));
        return likely ? RuleOf(YearOf(utcSeconds + likely->standardOffset)) : nullptr;
    }

    static chrono::sys_days DayOf(std::int64_t seconds) {
        return chrono::floor<chrono::days>(chrono::sys_seconds(chrono::seconds(seconds)));
    }

private:
    static int YearOf(std::int64_t seconds) {
        constexpr std::int64_t limit = std::int64_t{lastYear - 1970} * 366 * day;
        if (seconds < -limit || seconds > limit)
            return 0;
        return static_cast<int>(chrono::year_month_day(DayOf(seconds)).year());
    }

    YearRule const* RuleOf(int year) {
        if (year < firstYear || year > lastYear)
            return nullptr;
        auto const found = known.find(year);
        return found != known.end() ? &found->second : &known.emplace(year, rules(year)).first->second;
    }

    ZoneRules rules;
    std::map<int, YearRule> known;
};

struct SharedZone {
    std::mutex mutex;
    LocalZone zone;
};

// Never destroyed: threads may still convert while the process ends.
SharedZone& Shared() {
    static SharedZone& shared = *new SharedZone;
    return shared;
}

std::tm ToFields(std::int64_t reading, bool isSaving) {
    chrono::sys_days const date = LocalZone::DayOf(reading);
    chrono::year_month_day const calendar(date);
    std::int64_t const second = reading - date.time_since_epoch().count() * day;
    std::tm fields{};
    fields.tm_year = static_cast<int>(calendar.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned int>(calendar.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned int>(calendar.day()));
    fields.tm_hour = static_cast<int>(second / 3600);
    fields.tm_min = static_cast<int>(second / 60 % 60);
    fields.tm_sec = static_cast<int>(second % 60);
    fields.tm_wday = static_cast<int>(chrono::weekday(date).c_encoding());
    fields.tm_yday = static_cast<int>((date - chrono::sys_days(calendar.year() / 1 / 1)).count());
    fields.tm_isdst = isSaving ? 1 : 0;
    return fields;
}

} // namespace

void ReadLocalZone() noexcept {
    SharedZone& shared = Shared();
    std::scoped_lock const lock(shared.mutex);
    shared.zone.ReadAnew();
}

std::optional<std::tm> LocalFields(std::int64_t utcSeconds) noexcept {
    SharedZone& shared = Shared();
    std::scoped_lock const lock(shared.mutex);
    YearRule const* const rule = shared.zone.RuleAt(utcSeconds);
    if (!rule)
        return std::nullopt;
    return ToFields(utcSeconds + rule->OffsetAt(utcSeconds), rule->IsSaving(utcSeconds));
}

} // namespace QMT::platform
