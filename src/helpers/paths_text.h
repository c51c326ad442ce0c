// What depends on the system's separator in the work on paths, with the separator as an argument.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// The path with the separator, a backslash or a slash, in place of the other of the two.
QMT_UTILU_API String WithSeparators(String path, CodeUnit separator);

// FilterPathReversals with this separator between the elements.
QMT_UTILU_API String WithoutReversals(String path, CodeUnit separator);

// What stands to the left of the last such separator; the whole path when there is none.
QMT_UTILU_API String DirectoryOf(String path, CodeUnit separator);

} // namespace QMT
