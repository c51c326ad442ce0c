// Paths in the form that Windows takes whatever their length.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace QMT::platform {

// A short path as it is, a longer one complete and with the mark in front that lifts the limit of 260 units.
// Empty for one that no file can have: an empty one, or one that holds a zero.
std::optional<std::wstring> ToSystemPath(std::wstring_view path);

// What finds all that the directory holds. It goes by the complete path: behind "c:" or "name " a backslash
// would lead elsewhere. Empty as above.
std::optional<std::wstring> ToSearchPattern(std::wstring_view directory);

} // namespace QMT::platform
