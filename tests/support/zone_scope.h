// A zone and a time of its own for a test.
#pragma once

#include <atomic>
#include <cstdlib>
#include <optional>

#include "qmt/time/utc_local_time.h"
#include "support/this_system.h"

namespace QMT {

constexpr char const* berlin = "CET-1CEST,M3.5.0,M10.5.0/3"; // 31 March and 27 October in 2024

// For as long as it lives the environment names `zone`, the application's time is the given one, and the
// zone's records are those of its year. Then the environment and the clock are back and there are no records.
class ZoneScope {
public:
    ZoneScope(char const* zone, UTCTime const& now) {
        if (char const* const value = std::getenv("TZ"))
            formerZone = value;
        SetZone(zone);
        PortableTime::InstallCurrentTimeModifier(Now);
        StandAt(now);
        PortableTime::InitialiseZone(PortableTime::YearSource::CurrentTime);
    }

    ~ZoneScope() {
        SetZone(formerZone ? formerZone->c_str() : nullptr);
        PortableTime::InstallCurrentTimeModifier(nullptr);
        PortableTime::Terminate();
    }

    ZoneScope(ZoneScope&&) = delete;

    // The records stay until the next refresh, as they do after `SetZone`.
    void StandAt(UTCTime const& now) { seconds = (now - Epoch()).GetTotalSeconds(); }

    static void SetZone(char const* zone) { SetVariable("TZ", zone ? SystemNameOf(zone).c_str() : nullptr); }

    static UTCTime Epoch() { return UTCTime(1970, 1, 1, 0, 0, 0); }

private:
    static PortableTime Now() { return Epoch() + TimeSpan(0, 0, 0, seconds); }

    inline static std::atomic<int> seconds{0};
    std::optional<std::string> formerZone;
};

} // namespace QMT
