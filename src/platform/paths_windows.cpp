#include "platform/paths_windows.h"

#include <windows.h>

namespace QMT::platform {

namespace {

// A directory's path must leave room for a name of 8 and 3 units.
constexpr std::size_t longestPlainPath = MAX_PATH - 13;

constexpr std::wstring_view unlimited = L"\\\\?\\";
constexpr std::wstring_view unlimitedShare = L"\\\\?\\UNC\\";

// From the root on, with backslashes. Empty when the system cannot tell.
std::wstring Complete(std::wstring const& path) {
    std::wstring whole(MAX_PATH, L'\0');
    DWORD size = 0;
    while ((size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr)) >
           whole.size())
        whole.resize(size);
    whole.resize(size);
    return whole;
}

} // namespace

std::optional<std::wstring> ToSystemPath(std::wstring_view path) {
    if (path.empty() || path.find(L'\0') != std::wstring_view::npos)
        return std::nullopt;
    std::wstring const given(path);
    std::wstring const whole = Complete(given);
    // One that begins with two backslashes and a mark goes to the system as it is already.
    bool const isMarked = path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
    if (whole.size() <= longestPlainPath || isMarked)
        return given;
    return whole.starts_with(L"\\\\") ? std::wstring(unlimitedShare).append(whole, 2)
                                      : std::wstring(unlimited).append(whole);
}

} // namespace QMT::platform
