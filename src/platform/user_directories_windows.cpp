#include "platform/user_directories.h"

namespace QMT::platform {

namespace {

wchar_t const* BelowHome(UserDirectory which) {
    switch (which) {
    case UserDirectory::Data:
        return L"\\AppData\\Local";
    case UserDirectory::Pictures:
        return L"\\Pictures";
    default:
        return L"\\Music";
    }
}

} // namespace

std::basic_string<CodeUnit> PathOf(UserDirectory which, std::basic_string_view<CodeUnit> userName) {
    return std::wstring(L"c:\\Users\\").append(userName) + BelowHome(which);
}

} // namespace QMT::platform
