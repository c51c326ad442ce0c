#include "platform/threads.h"

#include <pthread.h>

#include <cstring>

namespace QMT::platform {

void NameCurrentThread(char const* name) {
#if defined(__linux__)
    if (name == nullptr)
        return;
    char shown[16] = {};
    std::strncpy(shown, name, sizeof shown - 1);
    pthread_setname_np(pthread_self(), shown);
#else
    static_cast<void>(name);
#endif
}

SystemError ThreadStartError(std::error_code const& error) {
    return static_cast<SystemError>(error.value());
}

} // namespace QMT::platform
