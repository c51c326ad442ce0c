#include "chain/stop_scope.h"

namespace QMT {

namespace {

thread_local StopScope* innermost = nullptr;

} // namespace

StopScope::StopScope(void const* link) : stopped(link), outer(innermost) {
    for (StopScope* scope = outer; scope != nullptr && earlier == nullptr; scope = scope->outer)
        if (scope->stopped == link)
            earlier = scope;
    innermost = this;
}

StopScope::~StopScope() {
    innermost = outer;
}

} // namespace QMT
