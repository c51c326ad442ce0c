// The local zone's records in force.
#pragma once

#include <atomic>

#include "time/zone_facts.h"

namespace QMT {

// Null before the first use; changed by local_zone.cpp alone.
extern std::atomic<ZoneRecords const*> recordsInForce;

// Finds them unless another thread has done so meanwhile, which it waits for.
ZoneRecords const& FindAtFirstUse();

// They stay as they are until `PortableTime::Terminate`, also when others replace them. From any thread.
// Found at first use, which waits and enters the system; from then on this does neither, nor does it
// allocate.
inline ZoneRecords const& LocalZone() {
    ZoneRecords const* const records = recordsInForce.load(std::memory_order_acquire);
    return records != nullptr ? *records : FindAtFirstUse();
}

} // namespace QMT
