#include "platform/thread_names.h"

#include <pthread.h>

#include "platform/utf8_text.h"

namespace QMT::platform {

std::basic_string<CodeUnit> CurrentThreadName() {
#if defined(__linux__)
    char name[16] = {};
    if (pthread_getname_np(pthread_self(), name, sizeof name) == 0)
        return FromUtf8(name);
#endif
    return {};
}

} // namespace QMT::platform
