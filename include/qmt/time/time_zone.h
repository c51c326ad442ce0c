// What a calendar year of the local zone is like, and what a reading of the wall clock can mean.
#pragma once

#include "qmt/export.h"
#include "qmt/time/portable_time.h"
#include "qmt/time/utc_local_time.h"

namespace QMT {

// The facts of one calendar year, as `PortableTime::GetZoneYear` gives them. Offsets are local time minus
// UTC, positive east of Greenwich. Between the two changes the offset of June is in force, before and after
// them that of January, in both hemispheres. Without changes the four changeovers are 2000/01/01 00:00:00.
//
// The search behind it is a coarse one. It takes a year for unchanging when its offsets in January and June
// are the same; it finds a change off the half hours at the next half hour; it knows two changes a year, of
// which the second leads back. docs/time.md tells all of it.
struct ZoneYear {
    TimeSpan janOffset; // at 00:00 on 1 January
    TimeSpan junOffset; // at 00:00 on 1 June
    bool hasChangeovers;

    // By the wall clock in force until then: at the first in a northern spring it jumps from 02:00, at the
    // second in autumn it is set back from 03:00. A second change that the year does not see is 1 January
    // 00:00 of the next year, in UTC not before the end of the year either.
    PortableTime firstLocalChangeover;
    PortableTime secondLocalChangeover;
    PortableTime firstUtcChangeover;
    PortableTime secondUtcChangeover;
};

// How often the wall clock shows a reading.
enum class ReadingKind {
    Unique,
    Skipped, // never: it lies in the gap by which the clock was set forward
    Repeated // twice: the clock was set back over it
};

// What a reading of the wall clock can mean, as `LocalTime::Classify` tells.
//
// In a zone that goes from UTC + 1 to UTC + 2 at 02:00 and back at 03:00:
//
//     reading    on the day  kind      earlier    later
//     01:59:59   in spring   Unique    00:59:59   00:59:59
//     02:30:00   in spring   Skipped   00:30:00   01:30:00
//     03:00:00   in spring   Unique    01:00:00   01:00:00
//     02:30:00   in autumn   Repeated  00:30:00   01:30:00
struct LocalReading {
    ReadingKind kind;

    // Repeated: the first and the second pass. Skipped: the reading taken by the clock behind the change and
    // by the clock in front of it. Unique: both are the one moment.
    UTCTime earlier;
    UTCTime later;
};

} // namespace QMT
