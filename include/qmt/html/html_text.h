// Percent-escapes, replacing, and fixed mark-up for the text of pages and of their addresses. Nothing here
// keeps state; every function may be called from any thread, takes time in proportion to its text, and never
// fails.
#pragma once

#include "qmt/export.h"
#include "qmt/general/code_unit.h"
#include "qmt/general/string.h"

namespace QMT {

// Turns each plus sign into a blank and then decodes the text as HtmlDecode does. An escaped plus sign stays.
QMT_UTILU_API void UrlDecode(String& text);

// The text with its percent-escapes decoded, each of which is "%" and two characters with the value of their
// HexVal digits, in 16 bits. What an escape gives is not decoded again, and one of value 0 vanishes, together
// with the search at the place behind it. A "%" at the very end or before a double quote stays; one with a
// single character behind it takes a zero as the second.
//
// When there was an escape, the low bytes of all characters up to the first zero are then read as UTF-8. Text
// without one comes back as it is. Entities such as &nbsp; are no escapes.
QMT_UTILU_API String HtmlDecode(String text);

// Replaces every occurrence of from by to; what was put in is not searched again. An empty from changes
// nothing.
QMT_UTILU_API void HtmlReplace(String from, String to, String& text);

// The value of a digit: 0 to 9 for the digits, 10 to 15 for the capitals A to F. Any other unit gives its
// number minus 55, so that a small a gives 42.
QMT_UTILU_API int HexVal(CodeUnit digit);

// The text with a plus sign for each blank. Nothing else is escaped.
QMT_UTILU_API String UrlSpacesToPlus(String text);

// The mark-up of a blank line, "<p>&nbsp;</p>".
QMT_UTILU_API String HtmlLinespace();

// Whether pages may use an input field for times: false.
QMT_UTILU_API bool SupportsHtmlTimeSelector();

} // namespace QMT
