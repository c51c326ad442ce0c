// The registry of the system, or what stands in for it.
#pragma once

#include "qmt/platform/registry.h"

namespace QMT::platform {

// Made at the first call, and never destroyed. Windows: the system's own, to which each call goes straight.
// POSIX: two databases stand in for it.
Registry& SystemRegistry();

} // namespace QMT::platform
