// Text in the encodings that Windows numbers as code pages, through the system's own converter.
//
// 0 is the encoding of the user's locale. At least these are known besides: 65001 (UTF-8), 1250 to 1258, 437,
// 850 and 932. A unit without counterpart becomes "?", a byte that belongs to no character U+FFFD. Windows
// gives the control character of the same number for a byte that a page leaves open, and does not join a
// letter and its accent (1258).
#pragma once

#include <string>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// Each gives false, and leaves the result as it is, for a code page that the system does not know; on Windows
// also for more than 2 GiB.
bool ToCodePage(unsigned int codePage, std::basic_string_view<CodeUnit> text, std::string& bytes);
bool FromCodePage(unsigned int codePage, std::string_view bytes, std::basic_string<CodeUnit>& text);

} // namespace QMT::platform
