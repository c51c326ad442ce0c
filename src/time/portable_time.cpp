#include "qmt/time/portable_time.h"

#include <array>
#include <atomic>
#include <cstddef>

#include "time/portable_time_imp.h"
#include "time/time_text.h"

namespace QMT {

namespace {

std::atomic<unsigned int> timeUnitMinutes{30};

// In the order in which they decide a comparison.
std::array<int, 6> Fields(PortableTime const& value) {
    return {value.GetYear(), value.GetMonth(),  value.GetDay(),
            value.GetHour(), value.GetMinute(), value.GetSecond()};
}

CalendarNumbers WithTimeUnit(CalendarNumbers fields, unsigned int slot) {
    unsigned int const minutes = slot * PortableTime::TimeUnitMins();
    fields[3] = minutes / 60;
    fields[4] = minutes % 60;
    return fields;
}

std::unique_ptr<PortableTimeImpInterface> Build(CalendarNumbers const& fields) {
    return std::make_unique<PortableTimeImp>(fields[0], fields[1], fields[2], fields[3], fields[4],
                                             fields[5]);
}

} // namespace

PortableTime::PortableTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                           unsigned int minute, unsigned int second)
    : implementation(std::make_unique<PortableTimeImp>(year, month, day, hour, minute, second)) {}

PortableTime::PortableTime(unsigned int year, unsigned int month, unsigned int day, unsigned int slot)
    : implementation(Build(WithTimeUnit({year, month, day, 0, 0, 0}, slot))) {}

PortableTime::PortableTime(String text) : implementation(Build(ReadTime(text))) {}

PortableTime::PortableTime(String date, unsigned int slot)
    : implementation(Build(WithTimeUnit(ReadDate(date), slot))) {}

PortableTime::PortableTime(PortableTime const& other)
    : implementation(PortableTimeImp::CopyOf(*other.implementation)) {}

PortableTime& PortableTime::operator=(PortableTime const& other) {
    if (this != &other)
        *this = PortableTime(other);
    return *this;
}

int PortableTime::GetYear() const {
    return implementation->GetYear();
}

int PortableTime::GetMonth() const {
    return implementation->GetMonth();
}

int PortableTime::GetDay() const {
    return implementation->GetDay();
}

int PortableTime::GetHour() const {
    return implementation->GetHour();
}

int PortableTime::GetMinute() const {
    return implementation->GetMinute();
}

int PortableTime::GetSecond() const {
    return implementation->GetSecond();
}

int PortableTime::GetDayOfWeek() const {
    return implementation->GetDayOfWeek();
}

bool PortableTime::operator<(PortableTime const& other) const {
    return Fields(*this) < Fields(other);
}

bool PortableTime::operator>(PortableTime const& other) const {
    return Fields(*this) > Fields(other);
}

bool PortableTime::operator>=(PortableTime const& other) const {
    return !(*this < other);
}

bool PortableTime::operator==(PortableTime const& other) const {
    return Fields(*this) == Fields(other);
}

String PortableTime::GetDate(unsigned int* slot) const {
    if (slot != nullptr)
        *slot = GetTimeUnits();
    return YMD(true);
}

String PortableTime::LocalYMD() const {
    return implementation->LocalYMD();
}

String PortableTime::LocalHM() const {
    return implementation->LocalHM();
}

String PortableTime::GetDayOfWeekName() const {
    return DayToString(GetDayOfWeek());
}

String PortableTime::DayToString(int dayOfWeek) {
    static constexpr std::array<char16_t const*, 7> names{u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                                          u"Thursday", u"Friday", u"Saturday"};
    if (dayOfWeek < 1 || dayOfWeek > 7)
        return String();
    return names[static_cast<std::size_t>(dayOfWeek - 1)];
}

unsigned int PortableTime::GetTimeUnits() const {
    return (static_cast<unsigned int>(GetHour()) * 60 + static_cast<unsigned int>(GetMinute())) /
           TimeUnitMins();
}

void PortableTime::SetTimeUnitMins(unsigned int minutes) {
    timeUnitMinutes.store(minutes, std::memory_order_relaxed);
}

unsigned int PortableTime::TimeUnitMins() {
    return timeUnitMinutes.load(std::memory_order_relaxed);
}

void PortableTime::Add(TimeSpan const& span) {
    implementation->Add(span.implementation.get());
}

void PortableTime::Subtract(TimeSpan const& span) {
    implementation->Subtract(span.implementation.get());
}

TimeSpan PortableTime::Difference(PortableTime const& other) const {
    return TimeSpan(implementation->Difference(other.implementation.get()));
}

} // namespace QMT
