#include "platform/file_names.h"

#include <cerrno>
#include <iterator>
#include <unistd.h>
#include <utf8.h>

#include "platform/code_points.h"
#include "platform/file_names_posix.h"

namespace QMT::platform {

namespace {

// The usual path, at the lowest cost: nearly every access to a file needs one.
bool NarrowAscii(std::basic_string_view<CodeUnit> path, std::string& name) {
    name.resize(path.size());
    unsigned int bits = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        bits |= path[i];
        name[i] = static_cast<char>(path[i]);
    }
    return bits < 0x80;
}

} // namespace

std::string ToFileName(std::basic_string_view<CodeUnit> path) {
    std::string name;
    if (NarrowAscii(path, name)) {
        return name;
    }
    name.clear();
    for (std::size_t i = 0; i < path.size();) {
        std::uint32_t const codePoint = NextCodePoint(path, i);
        if (codePoint >= escapedByteBase + 0x80 && codePoint <= escapedByteBase + 0xFF) {
            name += static_cast<char>(codePoint - escapedByteBase);
        } else {
            utf8::unchecked::append(codePoint, std::back_inserter(name));
        }
    }
    return name;
}

SystemError DeleteEmptyDirectory(std::basic_string_view<CodeUnit> path) {
    std::string const name = ToFileName(path);
    if (name.find('\0') != std::string::npos) {
        return EINVAL;
    }
    return ::rmdir(name.c_str()) == 0 ? SystemError{} : static_cast<SystemError>(errno);
}

} // namespace QMT::platform
