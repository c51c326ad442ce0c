// Prints the slots of the local day around both changes of the clock in the current year, with UTC beside
// them.
//
//     TZ=Europe/Berlin day_slots [MINUTES]
//
// MINUTES is the length of a slot, 30 by default, of which a day holds a whole number.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qmt/time/time_zone.h"
#include "qmt/time/utc_local_time.h"

namespace {

using QMT::LocalReading;
using QMT::LocalTime;
using QMT::PortableTime;
using QMT::ReadingKind;
using QMT::UTCTime;

constexpr unsigned int minutesPerDay = 1440;
constexpr unsigned int slotsAround = 4;

// The text of a time, which is ASCII.
std::string Text(PortableTime const& time) {
    QMT::String const text = time.YMDHM(true);
    std::string narrow;
    for (auto const unit : text.View())
        narrow += static_cast<char>(unit);
    return narrow;
}

void PrintSlot(LocalTime const& start) {
    std::printf("%6u  %s  ", start.GetTimeUnits(), Text(start).c_str());
    LocalReading const reading = start.Classify();
    switch (reading.kind) {
    case ReadingKind::Unique:
        std::printf("%s\n", Text(reading.earlier).c_str());
        break;
    case ReadingKind::Skipped:
        std::printf("never on the clock\n");
        break;
    case ReadingKind::Repeated:
        std::printf("%s and %s\n", Text(reading.earlier).c_str(), Text(reading.later).c_str());
        break;
    }
}

void PrintAround(char const* title, PortableTime const& changeover) {
    std::printf("\n%s at %s\n  slot  local             UTC\n", title, Text(changeover).c_str());
    // Counted from the day before, for a change at the start of the day.
    auto const yesterday = static_cast<unsigned int>(changeover.GetDay() - 1);
    unsigned int const middle = minutesPerDay / PortableTime::TimeUnitMins() + changeover.GetTimeUnits();
    for (unsigned int slot = middle - slotsAround; slot <= middle + slotsAround; ++slot)
        PrintSlot(LocalTime(static_cast<unsigned int>(changeover.GetYear()),
                            static_cast<unsigned int>(changeover.GetMonth()), yesterday, slot));
}

} // namespace

int main(int argumentCount, char** arguments) {
    unsigned long const minutes = argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 30;
    if (minutes == 0 || minutesPerDay % minutes != 0 || minutesPerDay / minutes < slotsAround) {
        std::fprintf(stderr, "%s: a day of 1440 minutes holds no whole number of such slots\n", arguments[0]);
        return EXIT_FAILURE;
    }
    PortableTime::SetTimeUnitMins(static_cast<unsigned int>(minutes));
    PortableTime::InitialiseZone();
    std::printf("Now   %6u  %s  %s UTC\n", LocalTime::GetTimeNow().GetTimeUnits(),
                Text(LocalTime::GetTimeNow()).c_str(), Text(UTCTime::GetTimeNow()).c_str());
    if (PortableTime::IsDST()) {
        PrintAround("First change", PortableTime::FirstLocalChangeover());
        PrintAround("Second change", PortableTime::SecondLocalChangeover());
    } else {
        std::printf("The clock does not change this year.\n");
    }
    PortableTime::Terminate();
    return EXIT_SUCCESS;
}
