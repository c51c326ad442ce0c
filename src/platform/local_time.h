// The system's conversion of a count of seconds to what the local wall clock reads.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace QMT::platform {

// The zone is the one that the environment variable "TZ" names, or the machine's own without one. POSIX: what
// it names is found in the system's zone data. Windows: a zone by the name that Windows gives it, such as
// "W. Europe Standard Time", with the rules of each year as the system knows them; or a text such as
// "CET-1CEST,M3.5.0,M10.5.0/3" (zone_rules_windows.h), whose rules hold in every year. Anything else, like
// "Europe/Berlin", is no zone there and counts as unset. The C run-time library of Windows is not asked: it
// knows one rule for all years, and that of the United States for any text.
//
// Any thread may call these, several at once. They enter the system, may wait for each other and may read
// files. The environment does not change meanwhile.

// From now on the zone is the one that the environment names now. Zone data that was replaced on the disc
// under the same name need not be read anew.
void ReadLocalZone() noexcept;

// The wall clock's reading at `utcSeconds` since 1970-01-01 00:00:00 UTC, all fields set. Empty when the
// system cannot convert it.
std::optional<std::tm> LocalFields(std::int64_t utcSeconds) noexcept;

} // namespace QMT::platform
