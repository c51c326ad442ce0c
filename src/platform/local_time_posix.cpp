#include "platform/local_time.h"

namespace QMT::platform {

void ReadLocalZone() noexcept {
    tzset();
}

std::optional<std::tm> LocalFields(std::int64_t utcSeconds) noexcept {
    std::time_t const count = utcSeconds;
    std::tm fields{};
    if (localtime_r(&count, &fields) == nullptr)
        return std::nullopt;
    return fields;
}

} // namespace QMT::platform
