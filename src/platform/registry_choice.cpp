// Which registry the library uses.
#include <atomic>

#include "platform/registry_system.h"
#include "qmt/platform/registry.h"

namespace QMT {

namespace {

std::atomic<Registry*> chosen{nullptr};

} // namespace

Registry::~Registry() = default;

Registry& GetRegistry() {
    Registry* const registry = chosen.load(std::memory_order_acquire);
    return registry ? *registry : platform::SystemRegistry();
}

Registry* UseRegistry(Registry* registry) {
    return chosen.exchange(registry, std::memory_order_acq_rel);
}

} // namespace QMT
