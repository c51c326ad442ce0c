#include "platform/executable.h"

#include <filesystem>
#include <system_error>

#include "platform/path_bytes_posix.h"

namespace QMT::platform {

std::basic_string<CodeUnit> ExecutablePath() {
    std::error_code error;
    std::filesystem::path const path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::basic_string<CodeUnit>() : FromFileName(path.native());
}

} // namespace QMT::platform
