#include "platform/settled_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "platform/file_names.h"

namespace QMT::platform {

SystemError ReadHeadTwice(std::basic_string_view<CodeUnit> path, std::span<char, settledHeadSize> head,
                          std::size_t& count, bool& agree) {
    std::string const name = ToFileName(path);
    if (name.find('\0') != std::string::npos) {
        return EINVAL;
    }
    int const file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return static_cast<SystemError>(errno);
    }
    char second[settledHeadSize];
    ssize_t const got = ::pread(file, head.data(), head.size(), 0);
    SystemError const error = got < 0 ? static_cast<SystemError>(errno) : 0;
    agree = got >= 0 && ::pread(file, second, sizeof(second), 0) == got &&
            std::memcmp(head.data(), second, static_cast<std::size_t>(got)) == 0;
    count = got < 0 ? 0 : static_cast<std::size_t>(got);
    ::close(file);
    return error;
}

} // namespace QMT::platform
