// Judges text that a user has typed. The messages are for that user; some go through NATIVE, so the table of
// native strings (qmt/html/native_strings.h) must not be read in meanwhile. Nothing here keeps state, throws,
// waits or logs, and every function may be called from any thread.
#pragma once

#include <string>

#include "qmt/export.h"
#include "qmt/general/code_unit.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// Null when the address, white space at its ends left aside, passes as an e-mail address. Otherwise an error
// that the caller owns, with the message of the first fault found. Addresses that belong to an office, such
// as info@, are refused as well.
QMT_UTILU_API ErrorInfo* InvalidEmailAddress(String address);

// Null when the code passes as a postal code of the country. The only country with a rule is "uk", in lower
// case; for any other nothing is looked at or changed. Otherwise an error that the caller owns.
//
// The code loses the white space at its ends, and surplus blanks between its two parts, which happens for a
// badly formed code too, unless its second part holds a letter that no code has there (C, I, K, M, O, V).
// Letters must be capitals. A first part of one character, or of five and more, passes with any second part
// that holds none of those letters.
QMT_UTILU_API ErrorInfo* CheckPostalCodeFormat(String& code, String country);

// Empty when the text holds none of ' " \ ; % _ #, with allowQuotes none of the last five. Otherwise a
// message that lists each of those found once, in that order. The text is not escaped.
QMT_UTILU_API String SQLSafe(String text, bool allowQuotes);

// True when the text is not empty and holds the digits 0 to 9 only.
QMT_UTILU_API bool IsNumeric(std::basic_string<CodeUnit> const& text);

} // namespace QMT
