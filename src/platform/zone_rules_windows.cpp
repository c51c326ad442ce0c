#include "platform/zone_rules_windows.h"

#include <algorithm>
#include <chrono>

namespace QMT::platform {

namespace {

namespace chrono = std::chrono;

constexpr std::int64_t hour = 3600;
constexpr std::int64_t day = 24 * hour;

constexpr std::string_view usualChanges = ",M3.2.0,M11.1.0"; // at 2 o'clock

bool IsLetter(char unit) {
    return (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z');
}

bool IsDigit(char unit) {
    return unit >= '0' && unit <= '9';
}

// A day of every year and the time on it.
struct Change {
    enum class Kind {
        Weekly,  // M month.week.day of the week
        Julian,  // J day from 1, 29 February never counted
        Counted, // day from 0, 29 February counted
    };

    // By the clock in force until then, in seconds since 1970 as if it were UTC.
    std::int64_t InYear(int year) const { return DayInYear(year) * day + time; }

    Kind kind = Kind::Counted;
    unsigned int numbers[3] = {};
    std::int64_t time = 2 * hour;

private:
    std::int64_t DayInYear(int year) const {
        if (kind == Kind::Weekly)
            return DayOfWeekInMonth(year, numbers[0], numbers[1], numbers[2]);
        chrono::year const calendarYear(year);
        std::int64_t const first = chrono::sys_days(calendarYear / 1 / 1).time_since_epoch().count();
        bool const isBehindLeapDay = calendarYear.is_leap() && numbers[0] >= 60;
        return first + numbers[0] - (kind == Kind::Julian && !isBehindLeapDay ? 1 : 0);
    }
};

// Takes the text apart from its start; what does not fit makes the rest bad.
class ZoneText {
public:
    explicit ZoneText(std::string_view zone) : text(zone) {}

    bool IsBad() const { return isBad; }

    bool IsAtEnd() const { return text.empty(); }

    bool StartsWith(char unit) const { return text.starts_with(unit); }

    bool Take(char unit) {
        bool const isThere = StartsWith(unit);
        if (isThere)
            text.remove_prefix(1);
        return isThere;
    }

    void TakeName() {
        bool const isQuoted = Take('<');
        auto const* const end = isQuoted ? std::find(text.begin(), text.end(), '>')
                                         : std::find_if_not(text.begin(), text.end(), IsLetter);
        auto const size = static_cast<std::size_t>(end - text.begin());
        text.remove_prefix(size);
        isBad |= size < 3 || (isQuoted && !Take('>'));
    }

    // In seconds.
    std::int64_t TakeTime() {
        bool const isNegative = Take('-');
        if (!isNegative)
            Take('+');
        std::int64_t seconds = TakeNumber(167) * hour;
        if (Take(':'))
            seconds += TakeNumber(59) * std::int64_t{60};
        if (Take(':'))
            seconds += TakeNumber(59);
        return isNegative ? -seconds : seconds;
    }

    // Behind a comma.
    Change TakeChange() {
        isBad |= !Take(',');
        Change change;
        if (Take('M')) {
            change.kind = Change::Kind::Weekly;
            change.numbers[0] = TakeNumber(12, 1);
            isBad |= !Take('.');
            change.numbers[1] = TakeNumber(5, 1);
            isBad |= !Take('.');
            change.numbers[2] = TakeNumber(6);
        } else {
            bool const isJulian = Take('J');
            change.kind = isJulian ? Change::Kind::Julian : Change::Kind::Counted;
            change.numbers[0] = TakeNumber(365, isJulian ? 1 : 0);
        }
        if (Take('/'))
            change.time = TakeTime();
        return change;
    }

private:
    unsigned int TakeNumber(unsigned int most, unsigned int least = 0) {
        unsigned int number = 0;
        isBad |= text.empty() || !IsDigit(text.front());
        for (; !text.empty() && IsDigit(text.front()) && number <= most; text.remove_prefix(1))
            number = number * 10 + static_cast<unsigned int>(text.front() - '0');
        isBad |= number > most || number < least;
        return number;
    }

    std::string_view text;
    bool isBad = false;
};

} // namespace

std::int64_t DayOfWeekInMonth(int year, unsigned int month, unsigned int week, unsigned int weekDay) {
    auto const ofMonth = chrono::year(year) / chrono::month(month);
    chrono::weekday const wanted(weekDay);
    chrono::sys_days const found = week >= 5 ? chrono::sys_days(ofMonth / wanted[chrono::last])
                                             : chrono::sys_days(ofMonth / wanted[week]);
    return found.time_since_epoch().count();
}

std::optional<ZoneRules> RulesOfText(std::string_view text) {
    ZoneText zone(text);
    zone.TakeName();
    YearRule rule;
    rule.standardOffset = -zone.TakeTime();
    if (zone.IsBad())
        return std::nullopt;
    if (zone.IsAtEnd())
        return [rule](int) { return rule; };
    zone.TakeName();
    bool const tellsOffset = !zone.IsAtEnd() && !zone.StartsWith(',');
    rule.savingOffset = tellsOffset ? -zone.TakeTime() : rule.standardOffset + hour;
    ZoneText usual(usualChanges);
    ZoneText& changes = zone.IsAtEnd() ? usual : zone;
    Change const start = changes.TakeChange();
    Change const end = changes.TakeChange();
    if (zone.IsBad() || !zone.IsAtEnd())
        return std::nullopt;
    return [rule, start, end](int year) {
        YearRule ofYear = rule;
        ofYear.savingStarts = start.InYear(year) - rule.standardOffset;
        ofYear.savingEnds = end.InYear(year) - rule.savingOffset;
        return ofYear;
    };
}

} // namespace QMT::platform
