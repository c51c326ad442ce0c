#include "time/zone_search.h"

#include <algorithm>
#include <ctime>
#include <optional>

#include "platform/local_time.h"

namespace QMT {

namespace {

constexpr std::int64_t coarseStep = 30 * secondsPerDay;
constexpr std::int64_t backStep = secondsPerDay;
constexpr std::int64_t fineStep = 1800;

// How far behind the end of its year a change is looked for. A coarse step from within the year never ends
// beyond.
constexpr std::int64_t searchMargin = 31 * secondsPerDay;

// As UTC where the system cannot convert.
std::tm ClockAt(std::int64_t utcSeconds) {
    return platform::LocalFields(utcSeconds).value_or(UtcSecondsToFields(utcSeconds));
}

std::int64_t OffsetAt(std::int64_t utcSeconds) {
    std::tm fields = ClockAt(utcSeconds);
    return FieldsToUtcSeconds(fields) - utcSeconds;
}

// When the wall clock shows 00:00 on the first of `month`, 0 to 11. Where it does so twice, the second time,
// so that what follows is the month's; where it skips 00:00, the moment behind the gap.
std::int64_t MonthStart(std::int64_t year, int month) {
    std::tm fields{};
    fields.tm_year = static_cast<int>(year - 1900);
    fields.tm_mon = month;
    fields.tm_mday = 1;
    std::int64_t const reading = FieldsToUtcSeconds(fields);
    std::int64_t const byFormerOffset = reading - OffsetAt(reading - secondsPerDay);
    std::int64_t const byLaterOffset = reading - OffsetAt(reading + secondsPerDay);
    std::int64_t const earlier = std::min(byFormerOffset, byLaterOffset);
    std::int64_t const later = std::max(byFormerOffset, byLaterOffset);
    auto const isShownAt = [reading](std::int64_t moment) { return moment + OffsetAt(moment) == reading; };
    return isShownAt(earlier) && !isShownAt(later) ? earlier : later;
}

// The search for the first change of the offset behind a moment.
class ChangeSearch {
public:
    // Starts at `from`, where `offset` is in force. Offsets that are the same in whole units of `unitSeconds`
    // count as equal.
    ChangeSearch(std::int64_t from, std::int64_t offset, std::int64_t unitSeconds)
        : start(from), unit(unitSeconds), reference(offset / unitSeconds) {}

    // A moment behind the change; empty when no step until `end` comes upon one.
    std::optional<std::int64_t> StepPast(std::int64_t end) const {
        for (std::int64_t time = start; time <= end; time += coarseStep) {
            if (HasChanged(time))
                return time;
        }
        return std::nullopt;
    }

    // The first of the half hours from the start at which the change in front of `behind` has happened.
    std::int64_t Narrow(std::int64_t behind) const {
        std::int64_t time = behind;
        while (time > start && HasChanged(time))
            time = std::max(start, time - backStep);
        while (time < behind && !HasChanged(time))
            time += fineStep;
        return time;
    }

private:
    bool HasChanged(std::int64_t time) const { return OffsetAt(time) / unit != reference; }

    std::int64_t start;
    std::int64_t unit;
    std::int64_t reference;
};

// The wall clock's reading just behind the change, without the seconds.
std::int64_t ReadingBehind(std::int64_t change) {
    return DivideDown(change + OffsetAt(change), 60).whole * 60;
}

// June against January in whole minutes, in seconds.
std::int64_t Difference(ZoneFacts const& facts) {
    return (facts.junOffset / 60 - facts.janOffset / 60) * 60;
}

// In what offsets are compared: minutes, where they tell January and June apart.
std::int64_t ComparedUnit(ZoneFacts const& facts) {
    return Difference(facts) != 0 ? 60 : 1;
}

// `jan` and `jun` are the starts of these months in UTC, `nextYear` is that of the next year as fields read.
void FindFirstChange(ZoneFacts& facts, std::int64_t jan, std::int64_t jun, std::int64_t nextYear) {
    ChangeSearch const search(jan, facts.janOffset, ComparedUnit(facts));
    // Steps can miss a short spell around the start of June, which is behind the change in any case.
    std::int64_t const behind = search.StepPast(nextYear + searchMargin).value_or(jun);
    facts.local.first = ReadingBehind(search.Narrow(behind)) - Difference(facts);
    facts.utc.first = facts.local.first - facts.janOffset;
}

void FindSecondChange(ZoneFacts& facts, std::int64_t jun, std::int64_t nextYear) {
    ChangeSearch const search(jun, facts.junOffset, ComparedUnit(facts));
    if (std::optional<std::int64_t> const behind = search.StepPast(nextYear + searchMargin)) {
        facts.local.second = ReadingBehind(search.Narrow(*behind)) + Difference(facts);
        facts.utc.second = facts.local.second - facts.junOffset;
        if (facts.local.second <= nextYear)
            return;
    }
    // The offset of June holds to the end of the year, in UTC as on the wall clock.
    facts.local.second = nextYear;
    facts.utc.second = std::max(nextYear, nextYear - facts.junOffset);
}

} // namespace

int LocalYear(std::int64_t utcSeconds) {
    return static_cast<int>(std::int64_t{1900} + ClockAt(utcSeconds).tm_year);
}

ZoneFacts FindZoneFacts(std::int64_t year) {
    std::int64_t const jan = MonthStart(year, 0);
    std::int64_t const jun = MonthStart(year, 5);
    ZoneFacts facts;
    facts.janOffset = OffsetAt(jan);
    facts.junOffset = OffsetAt(jun);
    if (facts.HasChangeovers()) {
        std::int64_t const nextYear = DaysBeforeYear(year + 1) * secondsPerDay;
        FindFirstChange(facts, jan, jun, nextYear);
        FindSecondChange(facts, jun, nextYear);
    }
    return facts;
}

} // namespace QMT
