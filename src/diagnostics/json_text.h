// Text in JSON.
#pragma once

#include "qmt/general/string.h"

namespace QMT {

// Appends the text in quotation marks. Control characters go out by number. Surrogates without their other
// half become U+FFFD: no UTF-8 can hold them, and most readers refuse a whole file for their number.
void AppendJsonText(String& json, String const& text);

} // namespace QMT
