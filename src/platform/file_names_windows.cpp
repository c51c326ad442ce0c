#include "platform/file_names.h"

#include <windows.h>

#include "platform/paths_windows.h"
#include "platform/utf8_text.h"

namespace QMT::platform {

std::string ToFileName(std::basic_string_view<CodeUnit> path) {
    return ToUtf8(path);
}

SystemError DeleteEmptyDirectory(std::basic_string_view<CodeUnit> path) {
    auto const systemPath = ToSystemPath(path);
    if (!systemPath)
        return ERROR_INVALID_NAME;
    return ::RemoveDirectoryW(systemPath->c_str()) ? SystemError{} : ::GetLastError();
}

} // namespace QMT::platform
