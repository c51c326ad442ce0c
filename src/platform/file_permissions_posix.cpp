#include "platform/file_permissions.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_names.h"

namespace QMT::platform {

bool MakeWriteable(std::basic_string_view<CodeUnit> path) {
    constexpr mode_t allModes = 07777;
    std::string const name = ToFileName(path);

    struct stat facts {};

    if (name.find('\0') != std::string::npos || ::stat(name.c_str(), &facts) != 0)
        return false;
    // Where this is refused, the process may have its right from elsewhere: the last call tells.
    if ((facts.st_mode & S_IWUSR) == 0)
        static_cast<void>(::chmod(name.c_str(), (facts.st_mode & allModes) | S_IWUSR));
    return ::faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) == 0;
}

} // namespace QMT::platform
