// The program that the process runs.
#pragma once

#include <string>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The full path of the process's executable, of whatever length; empty when the system does not tell. Of a
// file that has been deleted the directory is right, and the name may carry a mark of the system's.
std::basic_string<CodeUnit> ExecutablePath();

} // namespace QMT::platform
