#include "qmt/general/containers.h"

#include "general/never_destroyed.h"
#include "qmt/general/events.h"

namespace QMT {

namespace {

CritSection& SharedBlocksSection() {
    static NeverDestroyed<CritSection> section("shared blocks");
    return *section;
}

} // namespace

void BlockOnCritSection() noexcept QMT_NO_THREAD_SAFETY_ANALYSIS {
    SharedBlocksSection().Enter();
}

void UnblockOnCritSection() noexcept QMT_NO_THREAD_SAFETY_ANALYSIS {
    SharedBlocksSection().Leave();
}

} // namespace QMT
