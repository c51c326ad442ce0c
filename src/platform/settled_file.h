// Reading the head of a small file that others may be writing over at the same moment.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/system_errors.h"
#include "qmt/general/code_unit.h"

namespace QMT::platform {

// As much of a file's head as is looked at.
inline constexpr std::size_t settledHeadSize = 4096;

// Reads the head of a file twice in a row, with one opening; enters the system and gives its error number.
// count is how much there is, up to the size of head; agree tells whether both reads found the same. The path
// is taken as platform/files.h tells.
SystemError ReadHeadTwice(std::basic_string_view<CodeUnit> path, std::span<char, settledHeadSize> head,
                          std::size_t& count, bool& agree);

} // namespace QMT::platform
