// Sorting of many texts that may have long beginnings in common.
#pragma once

#include <deque>
#include <vector>

#include "qmt/general/string.h"

namespace QMT {

// Pointers to the texts, which are all different, in ascending order. Takes time in proportion to what of the
// texts tells them apart, where a sort that compares whole texts reads common beginnings over and over.
std::vector<String*> SortedPointers(std::deque<String>& texts);

} // namespace QMT
