// Finds the facts of the local zone by sampling the system's conversions.
#pragma once

#include <cstdint>

#include "time/zone_facts.h"

namespace QMT {

// The year that the wall clock shows at `utcSeconds` since 1970-01-01 00:00:00 UTC.
int LocalYear(std::int64_t utcSeconds);

// The facts of the calendar year. The changes are the first ones behind 1 January and behind 1 June that the
// search sees: it goes in steps of 30 days, then of a day, then of half an hour. Some hundreds of conversions
// by the system; the zone does not change meanwhile.
ZoneFacts FindZoneFacts(std::int64_t year);

} // namespace QMT
