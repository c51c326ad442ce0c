// Who runs the process.
#pragma once

#include <string>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The name of the user with whose rights the process runs; empty when he has none. Windows: his log-in name,
// without the domain.
std::basic_string<CodeUnit> UserName();

} // namespace QMT::platform
