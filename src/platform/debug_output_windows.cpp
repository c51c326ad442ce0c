#include "platform/debug_output.h"

#include <windows.h>

#include "platform/wide_text_windows.h"

namespace QMT::platform {

void WriteDebugLine(std::string line) noexcept {
    line += '\n';
    OutputDebugStringW(ToWide(line).c_str());
}

} // namespace QMT::platform
