// The length of time that this library's own spans hold.
#pragma once

#include "qmt/general/numbers.h"
#include "qmt/time/portable_time.h"

namespace QMT {

class TimeSpanImp final : public TimeSpanImpInterface {
public:
    explicit TimeSpanImp(int length) : seconds(length) {}

    bool IsEqual(TimeSpanImpInterface const* other) const override {
        return compare(seconds, other->GetTotalSeconds()) == 0;
    }

    int GetTotalHours() const override { return static_cast<int>(seconds / 3600.0); }

    int GetTotalMinutes() const override { return static_cast<int>(seconds / 60.0); }

    int GetTotalSeconds() const override { return static_cast<int>(seconds); }

private:
    double seconds; // whole, and within 32 bits
};

} // namespace QMT
