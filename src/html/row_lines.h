// The words of a paragraph's row, spread over lines.
#pragma once

#include <cstddef>
#include <vector>

#include "html/page_text.h"

namespace QMT {

// Spreads the words, none of which is empty, over lines of about width characters, and gives where each line
// begins: the index of its first word, and behind the last line the number of words. Lines can be empty.
std::vector<std::size_t> LineStarts(std::vector<TextView> const& words, std::size_t width);

} // namespace QMT
