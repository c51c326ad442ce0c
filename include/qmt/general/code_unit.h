// The code unit in which all text of the family is held, measured and indexed.
#pragma once

#include <type_traits>

namespace QMT {

// One unit of UTF-16 on every system: wchar_t where that has 16 bits, char16_t elsewhere.
using CodeUnit = std::conditional_t<sizeof(wchar_t) == 2, wchar_t, char16_t>;

// The one of wchar_t and char16_t that CodeUnit is not. Text of this type is converted when it is taken.
using OtherCodeUnit = std::conditional_t<sizeof(wchar_t) == 2, char16_t, wchar_t>;

} // namespace QMT
