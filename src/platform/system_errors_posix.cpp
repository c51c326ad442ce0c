#include "platform/system_errors.h"

#include <cerrno>
#include <cstring>
#include <string_view>

namespace QMT::platform {

SystemError LastSystemError() noexcept {
    return static_cast<SystemError>(errno);
}

std::basic_string<CodeUnit> SystemErrorMessage(SystemError error) {
    // Unlike strerror this depends on no locale, is safe between threads, and tells when there is no text.
    char const* const message = strerrordesc_np(static_cast<int>(error));
    std::string_view const bytes = message ? message : "";
    return {bytes.begin(), bytes.end()};
}

} // namespace QMT::platform
