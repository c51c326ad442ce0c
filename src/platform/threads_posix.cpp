#include "platform/threads.h"

#include <pthread.h>

#include <cstring>
#include <exception>

namespace QMT::platform {

namespace {

void* Run(void* threadMain) {
    auto const& main = *static_cast<ThreadMain const*>(threadMain);
    main.run(main.argument);
    return nullptr;
}

} // namespace

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

SystemError StartThread(ThreadMain& main, ThreadHandle* handle) {
    static_assert(sizeof(pthread_t) <= sizeof(ThreadHandle));
    pthread_t thread{};
    if (int const error = pthread_create(&thread, nullptr, Run, &main))
        return static_cast<SystemError>(error);
    if (handle != nullptr)
        *handle = reinterpret_cast<ThreadHandle>(thread);
    else
        pthread_detach(thread);
    return 0;
}

void JoinThread(ThreadHandle thread) {
    if (pthread_join(reinterpret_cast<pthread_t>(thread), nullptr) != 0)
        std::terminate();
}

} // namespace QMT::platform
