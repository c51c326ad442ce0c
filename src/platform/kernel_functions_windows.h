// Functions of the kernel's library that not every Windows 10 has.
#pragma once

#include <windows.h>

namespace QMT::platform {

// Null when the system lacks it. The first releases have the names of threads in this library only, without
// the usual one that would lead there.
template <class Function>
Function* FindKernelFunction(char const* name) {
    HMODULE const kernel = ::GetModuleHandleW(L"kernelbase.dll");
    FARPROC const found = kernel ? ::GetProcAddress(kernel, name) : nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

} // namespace QMT::platform
