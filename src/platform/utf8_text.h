// Text as the UTF-8 in which databases hold it.
#pragma once

#include <string>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// A lone surrogate takes its three-byte form, so that it can be read back.
std::string ToUtf8(std::basic_string_view<CodeUnit> text);

// Never fails: a surrogate's three-byte form becomes that surrogate, and each other byte that belongs to no
// character U+FFFD.
std::basic_string<CodeUnit> FromUtf8(std::string_view bytes);

} // namespace QMT::platform
