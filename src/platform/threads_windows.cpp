#include "platform/threads.h"

#include <windows.h>

#include <process.h>

#include <exception>

#if defined(__MINGW32__)
#include <cxxabi.h>
#endif

#include "platform/kernel_functions_windows.h"
#include "platform/wide_text_windows.h"

namespace QMT::platform {

namespace {

// An exception that leaves the thread ends the process, as on every system.
unsigned __stdcall Run(void* threadMain) noexcept {
    auto const& main = *static_cast<ThreadMain const*>(threadMain);
    main.run(main.argument);
    return 0;
}

#if defined(__MINGW32__)
// The compiler's run-time library destroys a thread's variables through one key of its thread library, and
// frees their memory through another; when a thread ends, the key that was made first has its turn first. So
// the key of the destructors is made while this library is loaded, before any thread has such a variable.
[[maybe_unused]] int const madeKeyOfDestructors = abi::__cxa_thread_atexit([](void*) {}, nullptr, nullptr);
#endif

} // namespace

void NameCurrentThread(char const* name) {
    static auto* const setDescription =
        FindKernelFunction<HRESULT WINAPI(HANDLE, PCWSTR)>("SetThreadDescription");
    if (name && setDescription)
        setDescription(GetCurrentThread(), ToWide(name).c_str());
}

// Not by the language's library: under mingw-w64 that stands on a thread library which gives the record of a
// detached thread that ends to the next one too early, and then that next one ends without having run.
SystemError StartThread(ThreadMain& main, ThreadHandle* handle) {
    SetLastError(ERROR_SUCCESS);
    std::uintptr_t const thread = _beginthreadex(nullptr, 0, Run, &main, 0, nullptr);
    if (thread == 0) {
        SystemError const error = LastSystemError();
        return error == ERROR_SUCCESS ? ERROR_NO_SYSTEM_RESOURCES : error;
    }
    if (handle != nullptr)
        *handle = thread;
    else
        CloseHandle(reinterpret_cast<HANDLE>(thread));
    return 0;
}

void JoinThread(ThreadHandle thread) {
    auto* const handle = reinterpret_cast<HANDLE>(thread);
    if (GetThreadId(handle) == GetCurrentThreadId() || WaitForSingleObject(handle, INFINITE) != WAIT_OBJECT_0)
        std::terminate();
    CloseHandle(handle);
}

} // namespace QMT::platform
