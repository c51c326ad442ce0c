// Text in JSON.
#pragma once

#include "qmt/general/string.h"

namespace QMT {

// Appends the text in quotation marks. What JSON does not take as it is, and surrogates without their other
// half, which no UTF-8 can hold, goes out by number.
void AppendJsonText(String& json, String const& text);

} // namespace QMT
