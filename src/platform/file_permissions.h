// Who may write to a file.
#pragma once

#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// Lets the owner of the file or directory at the path write to it; where files have attributes for that,
// takes off all of them. A link leads to what it stands for; on Windows it has attributes of its own. True
// when the process may write to it afterwards. Never throws for a path, whatever it holds; one with a zero in
// it gives false.
bool MakeWriteable(std::basic_string_view<CodeUnit> path);

} // namespace QMT::platform
