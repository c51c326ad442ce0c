// What is done with the native strings of a page: they are listed, or replaced.
#pragma once

#include "html/page_text.h"
#include "qmt/general/containers.h"
#include "qmt/general/string.h"

namespace QMT {

// Adds the texts of the page that strings does not hold yet, and appends them to inPageOrder where that is
// not null. strings must be in ascending order and stays so.
void CollectNativeTexts(TextView page, bool parseHead, VArray<String, String>& strings,
                        NonSortableVArray<String>* inPageOrder);

// The page with the values of natives in place of its texts.
String SubstitutedPage(TextView page, bool parseHead, Map<String, String> const& natives);

} // namespace QMT
