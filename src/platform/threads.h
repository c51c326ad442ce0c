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

// Starts a thread that calls `run` with `argument`. With `handle` null nobody waits for the thread; otherwise
// it becomes the thread's, to be given to `JoinThread` once. Gives 0, or the system's number for what went
// wrong, and then nothing runs. Allocates.
SystemError StartThread(void (*run)(void*), void* argument, ThreadHandle* handle);

// Waits until the thread is gone, its thread-local variables included. Ends the process when it cannot, as on
// the thread itself.
void JoinThread(ThreadHandle thread);

} // namespace QMT::platform
