#include "platform/security.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <sys/stat.h>

namespace QMT::platform {

namespace {

constexpr mode_t allBits = 07777;
constexpr mode_t readAndWrite = 0666;
constexpr mode_t execute = 0111;

} // namespace

OpenAccess OpenToAllUsers(void* handle) {
    auto const number = reinterpret_cast<std::intptr_t>(handle);
    if (number < 0 || number > std::numeric_limits<int>::max()) {
        errno = EBADF;
        return OpenAccess::ObjectRefused;
    }
    auto const file = static_cast<int>(number);

    struct stat facts {};

    if (::fstat(file, &facts) != 0) {
        return OpenAccess::ObjectRefused;
    }
    mode_t const added = readAndWrite | ((facts.st_mode & S_IXUSR) != 0 ? execute : 0);
    bool const isDone = ::fchmod(file, (facts.st_mode & allBits) | added) == 0;
    return isDone ? OpenAccess::Done : OpenAccess::ObjectRefused;
}

} // namespace QMT::platform
