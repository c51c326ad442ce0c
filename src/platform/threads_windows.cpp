#include "platform/threads.h"

#include <windows.h>

#include "platform/wide_text_windows.h"

// The compiler's headers may be older than the function.
extern "C" WINBASEAPI HRESULT WINAPI SetThreadDescription(HANDLE thread, PCWSTR description);

namespace QMT::platform {

void NameCurrentThread(char const* name) {
    if (name)
        SetThreadDescription(GetCurrentThread(), ToWide(name).c_str());
}

SystemError ThreadStartError(std::error_code const&) {
    return ERROR_NO_SYSTEM_RESOURCES;
}

} // namespace QMT::platform
