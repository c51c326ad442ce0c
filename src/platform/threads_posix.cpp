#include "platform/threads.h"

#include <pthread.h>

#include <cstring>
#include <exception>
#include <memory>

namespace QMT::platform {

namespace {

struct Start {
    void (*run)(void*);
    void* argument;
};

void* Run(void* started) {
    std::unique_ptr<Start> const owned(static_cast<Start*>(started));
    Start const start = *owned;
    start.run(start.argument);
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

SystemError StartThread(void (*run)(void*), void* argument, ThreadHandle* handle) {
    static_assert(sizeof(pthread_t) <= sizeof(ThreadHandle));
    std::unique_ptr<Start> start(new Start{run, argument});
    pthread_t thread{};
    if (int const error = pthread_create(&thread, nullptr, Run, start.get()))
        return static_cast<SystemError>(error);
    static_cast<void>(start.release());
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
