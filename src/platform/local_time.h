// The system's conversion of a count of seconds to what the local wall clock reads.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace QMT::platform {

// The zone is the one that the environment variable "TZ" names, or the machine's own without one. POSIX: its
// zone data. Windows: the C run-time library, which knows the machine's zone and one rule of saving time, and
// no count before 1970.
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
