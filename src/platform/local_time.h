// The system's conversions between a count of seconds and the local wall clock.
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

// From now on the zone is the one that the environment names now.
void ReadLocalZone() noexcept;

// The wall clock's reading at `utcSeconds` since 1970-01-01 00:00:00 UTC, all fields set. Empty when the
// system cannot convert it.
std::optional<std::tm> LocalFields(std::int64_t utcSeconds) noexcept;

// When the wall clock reads year, month, day, hour, minute and second of `fields`, in seconds since
// 1970-01-01 00:00:00 UTC. The system finds out whether saving time is in force; of a reading that the clock
// skips or repeats it chooses a moment close by. Empty when the system cannot convert it.
std::optional<std::int64_t> LocalToUtcSeconds(std::tm fields) noexcept;

} // namespace QMT::platform
