#include "platform/file_permissions.h"

#include <windows.h>

#include "platform/paths_windows.h"

namespace QMT::platform {

bool MakeWriteable(std::basic_string_view<CodeUnit> path) {
    auto const systemPath = ToSystemPath(path);
    return systemPath && ::SetFileAttributesW(systemPath->c_str(), FILE_ATTRIBUTE_NORMAL) != 0;
}

} // namespace QMT::platform
