#include "platform/user.h"

#include <array>

#include <lmcons.h>
#include <windows.h>

namespace QMT::platform {

std::basic_string<CodeUnit> UserName() {
    std::array<CodeUnit, UNLEN + 1> name;
    DWORD size = name.size();
    return ::GetUserNameW(name.data(), &size) ? name.data() : L"";
}

} // namespace QMT::platform
