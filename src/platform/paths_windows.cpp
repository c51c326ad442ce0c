#include "platform/paths_windows.h"

#include <windows.h>

namespace QMT::platform {

namespace {

// A directory's path must leave room for a name of 8 and 3 units.
constexpr std::size_t longestPlainPath = MAX_PATH - 13;

constexpr std::wstring_view unlimited = L"\\\\?\\";
constexpr std::wstring_view unlimitedShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view device = L"\\\\.\\";

bool CanBePath(std::wstring_view path) {
    return !path.empty() && path.find(L'\0') == std::wstring_view::npos;
}

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
    if (!CanBePath(path))
        return std::nullopt;
    std::wstring const given(path);
    if (path.starts_with(unlimited)) // which the system takes to the letter
        return given;
    std::wstring const whole = Complete(given);
    if (whole.size() <= longestPlainPath)
        return given;
    if (whole.starts_with(unlimited) || whole.starts_with(device))
        return std::wstring(unlimited).append(whole, unlimited.size());
    return whole.starts_with(L"\\\\") ? std::wstring(unlimitedShare).append(whole, 2)
                                      : std::wstring(unlimited).append(whole);
}

std::optional<std::wstring> ToSearchPattern(std::wstring_view directory) {
    if (!CanBePath(directory))
        return std::nullopt;
    std::wstring pattern(directory);
    if (!directory.starts_with(unlimited))
        pattern = Complete(pattern);
    if (pattern.empty())
        return std::nullopt;
    if (!pattern.ends_with(L'\\'))
        pattern += L'\\';
    return ToSystemPath(pattern + L'*');
}

} // namespace QMT::platform
