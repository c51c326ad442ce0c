// Wrapping of paragraphs to a width.
#pragma once

#include <cstddef>

#include "html/page_text.h"
#include "qmt/general/string.h"

namespace QMT {

// The page, in the layout of FilteredPage, with the paragraphs of its formatable blocks wrapped to lines of
// about width characters.
String FormattedPage(TextView page, std::size_t width);

} // namespace QMT
