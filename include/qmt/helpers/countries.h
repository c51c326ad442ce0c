// The names of countries in the reader's language, and their two-letter codes.
#pragma once

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/string.h"

namespace QMT {

// The caller owns two maps and fills them with MakeCountries before the other functions are called; the maps
// live, and stay as they are, until that is called again. No lock is taken: MakeCountries runs while no other
// thread uses countries; after that any thread may look them up, without waiting.
//
// Names are as the table of native strings (qmt/html/native_strings.h) gave them when the maps were filled.
// To follow a change of language read the table and call MakeCountries again.
//
//     static Map<String, String> nameOfCode, codeOfName;
//     MakeCountries(nameOfCode, codeOfName);
//     String const name = Country(u"DE"); // "Germany"

// Empties both maps and fills the first with pairs of code and name, the second with pairs of name and code,
// 248 each. The code "GS" stands twice in the first one, for South Georgia and for South Sandwich Islands.
QMT_UTILU_API void MakeCountries(Map<String, String>& nameOfCode, Map<String, String>& codeOfName);

// The name for a code, in capitals; "South Georgia" for "GS". Empty when there is none.
QMT_UTILU_API String Country(String code);

// The code for a name, spelt exactly as in the map. Empty when there is none.
QMT_UTILU_API String CountryCode(String name);

// One HTML option for each country, in the order of the names by code unit, on a line of its own with four
// tabs in front. Names go in as they are, without escapes.
QMT_UTILU_API String CreateLanguageSelectOptions();

} // namespace QMT
