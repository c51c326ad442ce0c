#include "qmt/time/utc_local_time.h"

#include <utility>

#include "qmt/general/errors.h"
#include "qmt/time/time_zone.h"
#include "time/local_zone.h"
#include "time/time_access.h"

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

PortableTimeImp* FromLocal(LocalTime const& local) {
    std::int64_t const offset = LocalZone().OffsetAtLocal(TimeAccess::Seconds(local));
    return TimeAccess::ShiftedCopy(local, -offset);
}

PortableTimeImp* FromUtc(UTCTime const& utc) {
    std::int64_t const offset = LocalZone().OffsetAtUtc(TimeAccess::Seconds(utc));
    return TimeAccess::ShiftedCopy(utc, offset);
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

UTCTime::UTCTime(LocalTime const& local) : PortableTime(FromLocal(local)) {}

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

bool UTCTime::operator>=(UTCTime const& other) const {
    return PortableTime::operator>=(other);
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

LocalTime::LocalTime() : LocalTime(2000, 1, 1, 0, 0, 0) {}

LocalTime::LocalTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                     unsigned int minute, unsigned int second)
    : PortableTime(year, month, day, hour, minute, second) {}

LocalTime::LocalTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot)
    : PortableTime(year, month, day, slot) {}

LocalTime::LocalTime(String text) : PortableTime(std::move(text)) {}

LocalTime::LocalTime(String date, unsigned int slot) : PortableTime(std::move(date), slot) {}

LocalTime::LocalTime(UTCTime const& utc) : PortableTime(FromUtc(utc)) {}

LocalTime LocalTime::GetTimeNow() {
    return UTCTime::GetTimeNow();
}

LocalTime LocalTime::GetTodayStart() {
    LocalTime const now = GetTimeNow();
    return LocalTime(static_cast<unsigned int>(now.GetYear()), static_cast<unsigned int>(now.GetMonth()),
                     static_cast<unsigned int>(now.GetDay()), 0, 0, 0);
}

LocalTime& LocalTime::operator+=(TimeSpan const& span) {
    return *this = UTCTime(*this) += span;
}

LocalTime& LocalTime::operator-=(TimeSpan const& span) {
    return *this = UTCTime(*this) -= span;
}

LocalTime LocalTime::operator+(TimeSpan const& span) const {
    return UTCTime(*this) += span;
}

LocalTime LocalTime::operator-(TimeSpan const& span) const {
    return UTCTime(*this) -= span;
}

TimeSpan LocalTime::operator-(LocalTime const& other) const {
    return Difference(other);
}

bool LocalTime::operator>(LocalTime const& other) const {
    return PortableTime::operator>(other);
}

bool LocalTime::operator<(LocalTime const& other) const {
    return PortableTime::operator<(other);
}

bool LocalTime::operator>=(LocalTime const& other) const {
    return PortableTime::operator>=(other);
}

bool LocalTime::operator==(LocalTime const& other) const {
    return PortableTime::operator==(other);
}

LocalTime LocalTime::NextTimeUnit() const {
    return UTCTime(*this).NextTimeUnit();
}

LocalTime LocalTime::PrevTimeUnit() const {
    return UTCTime(*this).PrevTimeUnit();
}

LocalTime LocalTime::GetTimeSlot() const {
    return UTCTime(*this) -= Minutes(MinutesIntoUnit(*this));
}

void LocalTime::RoundDownMinutes(int minutes) {
    UTCTime utc(*this);
    utc.RoundDownMinutes(minutes);
    *this = utc;
}

void LocalTime::RoundUpMinutes(int minutes) {
    UTCTime utc(*this);
    utc.RoundUpMinutes(minutes);
    *this = utc;
}

String TimeUnitToTime(unsigned int slot, int minutesOff) {
    auto const minutes =
        static_cast<int>(slot * PortableTime::TimeUnitMins() - static_cast<unsigned int>(minutesOff));
    String text;
    text << leadzero << width(2) << minutes / 60 << u":" << leadzero << width(2) << minutes % 60;
    return text;
}

void LogToIDETime(String text) {
    LocalTime const now = LocalTime::GetTimeNow();
    text << u" at " << now.YMDHM(true) << u":" << leadzero << width(2) << now.GetSecond();
    LogToIDE(std::move(text));
}

} // namespace QMT
