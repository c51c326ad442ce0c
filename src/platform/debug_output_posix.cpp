#include "platform/debug_output.h"

#include <cstdio>
#include <utility>

namespace QMT::platform {

void WriteDebugLine(std::string line) noexcept {
    line += '\n';
    // Standard error has no buffer, so one call is one write, under the stream's own lock.
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace QMT::platform
