#include "platform/thread_names.h"

#include <windows.h>

namespace QMT::platform {

namespace {

using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);

// Looked up, because older systems lack it.
GetDescription FindGetDescription() {
    HMODULE const kernel = ::GetModuleHandleW(L"kernel32.dll");
    FARPROC const found = kernel ? ::GetProcAddress(kernel, "GetThreadDescription") : nullptr;
    return reinterpret_cast<GetDescription>(reinterpret_cast<void*>(found));
}

} // namespace

std::basic_string<CodeUnit> CurrentThreadName() {
    static GetDescription const getDescription = FindGetDescription();
    PWSTR text = nullptr;
    if (!getDescription || FAILED(getDescription(::GetCurrentThread(), &text)))
        return {};
    std::basic_string<CodeUnit> name(text);
    ::LocalFree(text);
    return name;
}

} // namespace QMT::platform
