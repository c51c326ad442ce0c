// The registry of the system, or what stands in for it.
#pragma once

#include "qmt/platform/registry.h"

namespace QMT::platform {

// Made at the first call, and never destroyed.
Registry& SystemRegistry();

} // namespace QMT::platform
