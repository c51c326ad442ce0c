// What a thread is called.
#pragma once

#include <string>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The name of the calling thread as debuggers and system monitors show it; empty when it has none or the
// system keeps none. On Linux the main thread has the program's, and a thread without one that of the thread
// which made it.
std::basic_string<CodeUnit> CurrentThreadName();

} // namespace QMT::platform
