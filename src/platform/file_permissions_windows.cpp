#include "platform/file_permissions.h"

#include <string>

#include <windows.h>

namespace QMT::platform {

bool MakeWriteable(std::basic_string_view<CodeUnit> path) {
    if (path.find(L'\0') != path.npos)
        return false;
    return ::SetFileAttributesW(std::wstring(path).c_str(), FILE_ATTRIBUTE_NORMAL) != 0;
}

} // namespace QMT::platform
