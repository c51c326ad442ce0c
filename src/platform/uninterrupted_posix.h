// Calls that a signal may interrupt.
#pragma once

#include <cerrno>

namespace QMT::platform {

// Repeats the call while signals interrupt it.
template <class Call>
auto Uninterrupted(Call call) {
    auto outcome = call();
    while (outcome < 0 && errno == EINTR) {
        outcome = call();
    }
    return outcome;
}

} // namespace QMT::platform
