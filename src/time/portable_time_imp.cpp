#include "time/portable_time_imp.h"

#include <array>

#include "time/time_span_imp.h"

namespace QMT {

namespace {

// Wraps where an `int` would overflow.
int AddToField(int field, int amount) {
    return static_cast<int>(static_cast<unsigned int>(field) + static_cast<unsigned int>(amount));
}

// In the C library's current locale. Empty when the text is empty or too long for the buffer.
String Format(char const* format, std::tm const& fields) {
    std::array<char, 200> text;
    if (std::strftime(text.data(), text.size(), format, &fields) == 0)
        return String();
    return DecodeFromUTF8(text.data(), false);
}

} // namespace

PortableTimeImp::PortableTimeImp(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                                 unsigned int minute, unsigned int second) {
    fields.tm_year = static_cast<int>(year - 1900U);
    fields.tm_mon = static_cast<int>(month - 1U);
    fields.tm_mday = static_cast<int>(day);
    fields.tm_hour = static_cast<int>(hour);
    fields.tm_min = static_cast<int>(minute);
    fields.tm_sec = static_cast<int>(second);
    seconds = FieldsToUtcSeconds(fields);
}

PortableTimeImp::PortableTimeImp(std::int64_t utcSeconds)
    : seconds(utcSeconds), fields(UtcSecondsToFields(utcSeconds)) {}

PortableTimeImp::PortableTimeImp(PortableTimeImpInterface const& other)
    : PortableTimeImp(static_cast<unsigned int>(other.GetYear()), static_cast<unsigned int>(other.GetMonth()),
                      static_cast<unsigned int>(other.GetDay()), static_cast<unsigned int>(other.GetHour()),
                      static_cast<unsigned int>(other.GetMinute()),
                      static_cast<unsigned int>(other.GetSecond())) {}

int PortableTimeImp::GetYear() const {
    return AddToField(fields.tm_year, 1900);
}

int PortableTimeImp::GetMonth() const {
    return fields.tm_mon + 1;
}

int PortableTimeImp::GetDay() const {
    return fields.tm_mday;
}

int PortableTimeImp::GetHour() const {
    return fields.tm_hour;
}

int PortableTimeImp::GetMinute() const {
    return fields.tm_min;
}

int PortableTimeImp::GetSecond() const {
    return fields.tm_sec;
}

int PortableTimeImp::GetDayOfWeek() const {
    return fields.tm_wday + 1;
}

TimeSpanImpInterface* PortableTimeImp::Difference(PortableTimeImpInterface const* other) const {
    // Of two counts the difference of the lower 32 bits is the lower 32 bits of the difference.
    return new TimeSpanImp(static_cast<int>(seconds - SecondsOf(*other)));
}

void PortableTimeImp::Add(TimeSpanImpInterface const* span) {
    Shift(span->GetTotalSeconds());
}

void PortableTimeImp::Subtract(TimeSpanImpInterface const* span) {
    Shift(-std::int64_t{span->GetTotalSeconds()});
}

String PortableTimeImp::LocalYMD() const {
    return Format("%A %b %d %Y", fields);
}

String PortableTimeImp::LocalHM() const {
    return Format("%H:%M", fields);
}

} // namespace QMT
