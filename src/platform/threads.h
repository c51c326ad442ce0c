// What threads need of the system beside the language's library.
#pragma once

#include <cstdint>

#include "platform/system_errors.h"

namespace QMT::platform {

// Names the calling thread for debuggers and system monitors; null or a name that the system refuses leaves
// it as it was. Linux shows the first 15 bytes, Windows all of them.
void NameCurrentThread(char const* name);

// A thread to wait for: the system's handle, never 0.
using ThreadHandle = std::uintptr_t;

struct ThreadMain {
    void (*run)(void*);
    void* argument;
};

// Starts a thread that calls `main.run` with its argument; `main` must stay until that call. With `handle`
// null nobody waits for the thread; otherwise it becomes the thread's, to be given to `JoinThread` once.
// Gives 0, or the system's number for what went wrong, and then nothing runs.
SystemError StartThread(ThreadMain& main, ThreadHandle* handle);

// Waits until the thread is gone, its thread-local variables included. Ends the process when it cannot, as on
// the thread itself.
void JoinThread(ThreadHandle thread);

} // namespace QMT::platform
