#include "platform/thread_names.h"

#include <windows.h>

#include "platform/kernel_functions_windows.h"

namespace QMT::platform {

std::basic_string<CodeUnit> CurrentThreadName() {
    static auto* const getDescription =
        FindKernelFunction<HRESULT WINAPI(HANDLE, PWSTR*)>("GetThreadDescription");
    PWSTR text = nullptr;
    if (!getDescription || FAILED(getDescription(::GetCurrentThread(), &text)))
        return {};
    std::basic_string<CodeUnit> name(text);
    ::LocalFree(text);
    return name;
}

} // namespace QMT::platform
