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

std::optional<std::int64_t> LocalToUtcSeconds(std::tm fields) noexcept {
    fields.tm_isdst = -1;
    fields.tm_wday = -1; // set by success alone, whereas -1 is a count like any other
    std::time_t const count = std::mktime(&fields);
    if (fields.tm_wday == -1)
        return std::nullopt;
    return count;
}

} // namespace QMT::platform
