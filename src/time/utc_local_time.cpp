#include "qmt/time/utc_local_time.h"

#include <utility>

namespace QMT {

namespace {

// `minutes` wraps as the parts of a span do.
TimeSpan Minutes(unsigned int minutes) {
    return TimeSpan(0, 0, static_cast<int>(minutes), 0);
}

// How many minutes the value lies behind the boundary of its time unit.
unsigned int MinutesIntoUnit(PortableTime const& value) {
    return static_cast<unsigned int>(value.GetMinute()) % PortableTime::TimeUnitMins();
}

} // namespace

UTCTime::UTCTime() : UTCTime(2000, 1, 1, 0, 0, 0) {}

UTCTime::UTCTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                 unsigned int minute, unsigned int second)
    : PortableTime(year, month, day, hour, minute, second) {}

UTCTime::UTCTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot)
    : PortableTime(year, month, day, slot) {}

UTCTime::UTCTime(String text) : PortableTime(std::move(text)) {}

UTCTime::UTCTime(String date, unsigned int slot) : PortableTime(std::move(date), slot) {}

UTCTime::UTCTime(PortableTime&& value) noexcept : PortableTime(std::move(value)) {}

UTCTime UTCTime::GetTimeNow() {
    return UTCTime(PortableTime::GetTimeNow());
}

UTCTime UTCTime::GetSystemTimeNow() {
    return UTCTime(PortableTime::GetSystemTimeNow());
}

UTCTime UTCTime::operator+(TimeSpan const& span) const {
    UTCTime sum(*this);
    sum += span;
    return sum;
}

UTCTime& UTCTime::operator+=(TimeSpan const& span) {
    Add(span);
    return *this;
}

UTCTime& UTCTime::operator-=(TimeSpan const& span) {
    Subtract(span);
    return *this;
}

TimeSpan UTCTime::operator-(UTCTime const& other) const {
    return Difference(other);
}

bool UTCTime::operator>(UTCTime const& other) const {
    return PortableTime::operator>(other);
}

bool UTCTime::operator<(UTCTime const& other) const {
    return PortableTime::operator<(other);
}

bool UTCTime::operator==(UTCTime const& other) const {
    return PortableTime::operator==(other);
}

UTCTime UTCTime::NextTimeUnit() const {
    return *this + Minutes(TimeUnitMins() - MinutesIntoUnit(*this));
}

UTCTime UTCTime::PrevTimeUnit() const {
    UTCTime start(*this);
    start -= Minutes(MinutesIntoUnit(*this) + TimeUnitMins());
    return start;
}

UTCTime UTCTime::GetTimeSlot() const {
    UTCTime start(*this);
    start -= Minutes(MinutesIntoUnit(*this));
    return start;
}

void UTCTime::RoundDownMinutes(int minutes) {
    *this -= TimeSpan(0, 0, GetMinute() % minutes, 0);
}

void UTCTime::RoundUpMinutes(int minutes) {
    int const rest = GetMinute() % minutes;
    if (rest > 0)
        *this += TimeSpan(0, 0, minutes - rest, 0);
}

} // namespace QMT
