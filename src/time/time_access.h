// What the library needs of a calendar value's inside.
#pragma once

#include <cstdint>
#include <memory>

#include "qmt/time/portable_time.h"
#include "time/portable_time_imp.h"

namespace QMT {

class TimeAccess {
public:
    // From 1970/01/01 00:00:00 to the value, whatever it stands for.
    static std::int64_t Seconds(PortableTime const& value) {
        return PortableTimeImp::SecondsOf(*value.implementation);
    }

    // What a copy of `value` that is moved by `shift` seconds holds; the caller owns it.
    static PortableTimeImp* ShiftedCopy(PortableTime const& value, std::int64_t shift) {
        std::unique_ptr<PortableTimeImp> copy = PortableTimeImp::CopyOf(*value.implementation);
        copy->Shift(shift);
        return copy.release();
    }
};

} // namespace QMT
