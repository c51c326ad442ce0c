#include "platform/system_errors.h"

#include <windows.h>

namespace QMT::platform {

SystemError LastSystemError() noexcept {
    return GetLastError();
}

std::basic_string<CodeUnit> SystemErrorMessage(SystemError error) {
    constexpr DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    wchar_t* text = nullptr;
    // With that flag the pointer's own place is what the call takes as the buffer.
    DWORD const length =
        FormatMessageW(flags, nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::basic_string<CodeUnit> message(text, length);
    LocalFree(text);
    return message;
}

} // namespace QMT::platform
