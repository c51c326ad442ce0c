#include "chain/stop_scope.h"

namespace QMT {

namespace {

thread_local StopScope* innermost = nullptr;

} // namespace

StopScope::StopScope(void const* link) : stopped(link), outer(innermost), hasComeBack(false) {
    for (StopScope const* scope = outer; scope != nullptr && !hasComeBack; scope = scope->outer)
        hasComeBack = scope->stopped == link;
    innermost = this;
}

StopScope::~StopScope() {
    innermost = outer;
}

} // namespace QMT
