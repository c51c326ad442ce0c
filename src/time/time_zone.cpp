#include "qmt/time/time_zone.h"

#include "time/local_zone.h"
#include "time/portable_time_imp.h"
#include "time/time_access.h"

namespace QMT {

namespace {

TimeSpan Span(std::int64_t seconds) {
    return TimeSpan(0, 0, 0, static_cast<int>(seconds));
}

PortableTime Moment(std::int64_t seconds) {
    return PortableTime(new PortableTimeImp(seconds));
}

// Of the current year, or else of the next.
ZoneFacts const& CurrentOrNext(int year) {
    ZoneRecords const& zone = LocalZone();
    return year == zone.CurrentYear() ? zone.Current() : zone.Next();
}

// The moments that a reading can mean, in seconds.
struct Moments {
    ReadingKind kind;
    std::int64_t earlier;
    std::int64_t later;
};

Moments FindMoments(ZoneRecords const& zone, std::int64_t local) {
    // No offset reaches a day, so these are in force surely in front of the reading and surely behind it.
    std::int64_t const before = zone.OffsetAtUtc(local - secondsPerDay);
    std::int64_t const after = zone.OffsetAtUtc(local + secondsPerDay);
    std::int64_t const byBefore = local - before;
    std::int64_t const byAfter = local - after;
    bool const isBefore = zone.OffsetAtUtc(byBefore) == before;
    bool const isAfter = zone.OffsetAtUtc(byAfter) == after;
    if (isBefore && isAfter && before != after)
        return {ReadingKind::Repeated, byBefore, byAfter};
    if (!isBefore && !isAfter)
        return {ReadingKind::Skipped, byAfter, byBefore};
    std::int64_t const moment = isBefore ? byBefore : byAfter;
    return {ReadingKind::Unique, moment, moment};
}

} // namespace

bool PortableTime::IsDST() {
    return LocalZone().Current().HasChangeovers();
}

bool PortableTime::IsDST2() {
    return LocalZone().Next().HasChangeovers();
}

bool PortableTime::IsDSTPast() {
    return LocalZone().Past().HasChangeovers();
}

TimeSpan PortableTime::JanUtcOffset() {
    return Span(LocalZone().Current().janOffset);
}

TimeSpan PortableTime::JanUtcOffset2() {
    return Span(LocalZone().Next().janOffset);
}

TimeSpan PortableTime::JanUtcOffset(int year) {
    return Span(CurrentOrNext(year).janOffset);
}

TimeSpan PortableTime::JunUtcOffset() {
    return Span(LocalZone().Current().junOffset);
}

TimeSpan PortableTime::JunUtcOffset2() {
    return Span(LocalZone().Next().junOffset);
}

TimeSpan PortableTime::JunUtcOffset(int year) {
    return Span(CurrentOrNext(year).junOffset);
}

PortableTime PortableTime::FirstLocalChangeover() {
    return Moment(LocalZone().Current().local.first);
}

PortableTime PortableTime::FirstLocalChangeover2() {
    return Moment(LocalZone().Next().local.first);
}

PortableTime PortableTime::FirstLocalChangeover(int year) {
    return Moment(CurrentOrNext(year).local.first);
}

PortableTime PortableTime::SecondLocalChangeover() {
    return Moment(LocalZone().Current().local.second);
}

PortableTime PortableTime::SecondLocalChangeover2() {
    return Moment(LocalZone().Next().local.second);
}

PortableTime PortableTime::SecondLocalChangeover(int year) {
    return Moment(CurrentOrNext(year).local.second);
}

ZoneYear PortableTime::GetZoneYear(int year) {
    ZoneFacts const& facts = LocalZone().OfYear(year);
    return ZoneYear{.janOffset = Span(facts.janOffset),
                    .junOffset = Span(facts.junOffset),
                    .hasChangeovers = facts.HasChangeovers(),
                    .firstLocalChangeover = Moment(facts.local.first),
                    .secondLocalChangeover = Moment(facts.local.second),
                    .firstUtcChangeover = Moment(facts.utc.first),
                    .secondUtcChangeover = Moment(facts.utc.second)};
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): it loses sight of the members of a result

LocalReading LocalTime::Classify() const {
    Moments const moments = FindMoments(LocalZone(), TimeAccess::Seconds(*this));
    return {moments.kind, UTCTime(Moment(moments.earlier)), UTCTime(Moment(moments.later))};
}

} // namespace QMT
