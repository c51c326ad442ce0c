// Reading a small file that others may be writing over at the same moment.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/system_errors.h"
#include "qmt/general/code_unit.h"

namespace QMT::platform {

// As much of a file's head as is looked at.
inline constexpr std::size_t settledHeadSize = 4096;

// Reads the head of a file twice, with LetWriterFinish in between and one opening; enters the system and
// gives its error number. count is how much there is, up to the size of head; agree tells whether both reads
// found the same. They do not in a file that another program, such as one that looks for viruses, lets nobody
// else open at the moment, which is possible on Windows only. The path is taken as platform/files.h tells.
SystemError ReadHeadTwice(std::basic_string_view<CodeUnit> path, std::span<char, settledHeadSize> head,
                          std::size_t& count, bool& agree);

// Waits for a write to the file that is going on, as far as the system can do that. Two reads in a row that
// agree may both have met one writer that was held up in the middle of its copying; not so when this was
// called between them.
void LetWriterFinish(std::basic_string_view<CodeUnit> path);

} // namespace QMT::platform
