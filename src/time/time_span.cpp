#include <array>

#include "qmt/time/portable_time.h"
#include "time/time_span_imp.h"

namespace QMT {

namespace {

// In unsigned numbers, which wrap where signed ones would overflow.
int SumOfParts(int days, int hours, int minutes, int seconds) {
    unsigned int sum = static_cast<unsigned int>(days) * 24U + static_cast<unsigned int>(hours);
    sum = sum * 60U + static_cast<unsigned int>(minutes);
    sum = sum * 60U + static_cast<unsigned int>(seconds);
    return static_cast<int>(sum);
}

// In the order in which they decide a comparison.
std::array<int, 3> Totals(TimeSpan const& span) {
    return {span.GetTotalHours(), span.GetTotalMinutes(), span.GetTotalSeconds()};
}

} // namespace

TimeSpan::TimeSpan() : TimeSpan(0, 0, 0, 0) {}

TimeSpan::TimeSpan(int days, int hours, int minutes, int seconds)
    : implementation(std::make_unique<TimeSpanImp>(SumOfParts(days, hours, minutes, seconds))) {}

TimeSpan::TimeSpan(TimeSpanImpInterface* owned) : implementation(owned) {}

TimeSpan::TimeSpan(TimeSpan const& other)
    : implementation(std::make_unique<TimeSpanImp>(other.GetTotalSeconds())) {}

TimeSpan& TimeSpan::operator=(TimeSpan const& other) {
    if (this != &other)
        *this = TimeSpan(other);
    return *this;
}

int TimeSpan::GetTotalHours() const {
    return implementation->GetTotalHours();
}

int TimeSpan::GetTotalMinutes() const {
    return implementation->GetTotalMinutes();
}

int TimeSpan::GetTotalSeconds() const {
    return implementation->GetTotalSeconds();
}

bool TimeSpan::operator>(TimeSpan const& other) const {
    return Totals(*this) > Totals(other);
}

bool TimeSpan::operator<(TimeSpan const& other) const {
    return Totals(*this) < Totals(other);
}

bool TimeSpan::operator==(TimeSpan const& other) const {
    return Totals(*this) == Totals(other);
}

} // namespace QMT
