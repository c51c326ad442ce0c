// The line layout of a page that all jobs rely on.
#pragma once

#include <cstddef>
#include <vector>

#include "html/page_text.h"

namespace QMT {

// The page with the tags that matter on lines of their own, line breaks in their one form, and no blank line.
// Of each tag only the first in a line of the page is moved, of line breaks all. When sourceLines is not
// null, the number of the page's line, from 1, that each line came from is appended to it.
String FilteredPage(TextView page, std::vector<std::size_t>* sourceLines);

} // namespace QMT
