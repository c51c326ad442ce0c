#include "platform/executable.h"

#include <windows.h>

namespace QMT::platform {

std::basic_string<CodeUnit> ExecutablePath() {
    constexpr std::size_t usualLength = 260;
    constexpr std::size_t longestPath = 32768;
    // A path that does not fit is cut, and then fills the whole room.
    for (std::size_t room = usualLength; room <= 2 * longestPath; room *= 2) {
        std::wstring path(room, L'\0');
        DWORD const length = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(room));
        if (length < room) {
            path.resize(length);
            return path;
        }
    }
    return {};
}

} // namespace QMT::platform
