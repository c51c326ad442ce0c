#include "platform/threads.h"

#include <windows.h>

#if defined(__MINGW32__)
#include <cxxabi.h>
#endif

#include "platform/kernel_functions_windows.h"
#include "platform/wide_text_windows.h"

namespace QMT::platform {

#if defined(__MINGW32__)
namespace {

// The compiler's run-time library destroys a thread's variables through one key of its thread library, and
// frees their memory through another; when a thread ends, the key that was made first has its turn first. So
// the key of the destructors is made while this library is loaded, before any thread has such a variable.
[[maybe_unused]] int const madeKeyOfDestructors = abi::__cxa_thread_atexit([](void*) {}, nullptr, nullptr);

} // namespace
#endif

void NameCurrentThread(char const* name) {
    static auto* const setDescription =
        FindKernelFunction<HRESULT WINAPI(HANDLE, PCWSTR)>("SetThreadDescription");
    if (name && setDescription)
        setDescription(GetCurrentThread(), ToWide(name).c_str());
}

SystemError ThreadStartError(std::error_code const&) {
    return ERROR_NO_SYSTEM_RESOURCES;
}

} // namespace QMT::platform
