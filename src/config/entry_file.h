// The file of one setting, read while others may be writing it.
#pragma once

#include "qmt/general/string.h"

namespace QMT {

// Puts the first line of the file into text. False, and an empty text, when the file cannot be opened.
//
// Two reads in a row that agree, and a line break behind the line, make sure that nobody is writing it. Until
// then it looks again, a few times within some milliseconds, and takes at last what is there.
bool ReadEntryFile(String const& path, String& text);

} // namespace QMT
