// The developer's debug output.
#pragma once

#include <string>

namespace QMT::platform {

// Writes the line, given in UTF-8 without its line break, to the developer's debug output. Any thread may
// call it, and lines do not mix: standard error gets each in one piece, the debugger of Windows in one call.
// A failure is not reported.
void WriteDebugLine(std::string line) noexcept;

} // namespace QMT::platform
