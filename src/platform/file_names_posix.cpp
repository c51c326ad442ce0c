#include "platform/file_names.h"

#include <cerrno>
#include <unistd.h>

#include "platform/path_bytes_posix.h"

namespace QMT::platform {

std::string ToFileName(std::basic_string_view<CodeUnit> path) {
    return ToPathBytes(path);
}

SystemError DeleteEmptyDirectory(std::basic_string_view<CodeUnit> path) {
    std::string const name = ToPathBytes(path);
    if (name.find('\0') != std::string::npos) {
        return EINVAL;
    }
    return ::rmdir(name.c_str()) == 0 ? SystemError{} : static_cast<SystemError>(errno);
}

} // namespace QMT::platform
