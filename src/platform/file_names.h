// Paths as the system takes them, for the seam's other sides.
#pragma once

#include <string>
#include <string_view>

#include "platform/system_errors.h"
#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The path as bytes, which are UTF-8; a lone surrogate takes three of them. POSIX: one from 0xDC80 to 0xDCFF
// stands for a byte of a name that is no UTF-8, as platform/files.h tells. Windows: names are text, and its
// calls want none of these bytes.
std::string ToFileName(std::basic_string_view<CodeUnit> path);

// Deletes a directory that is empty; enters the system and gives its error number.
SystemError DeleteEmptyDirectory(std::basic_string_view<CodeUnit> path);

} // namespace QMT::platform
