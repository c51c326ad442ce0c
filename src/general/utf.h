// Conversion between the text's UTF-16 and the UTF-8 of files and systems.
#pragma once

#include <string>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT {

// The byte order mark, as a code unit and as bytes of UTF-8.
inline constexpr CodeUnit byteOrderMark = 0xFEFF;
inline constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

// Stands for bytes and numbers that are no character.
inline constexpr CodeUnit replacementUnit = 0xFFFD;

// Appends the text as UTF-8. A lone surrogate takes its three-byte form, so that it can be read back.
void AppendUtf8(std::string& bytes, std::basic_string_view<CodeUnit> text);

// Appends the UTF-8 as text. Never fails: a surrogate's three-byte form becomes that surrogate, and each
// other byte that belongs to no character becomes U+FFFD.
void AppendDecodedUtf8(std::basic_string<CodeUnit>& text, std::string_view bytes);

// Appends one code point; what lies beyond U+10FFFF becomes U+FFFD, a surrogate stays as it is.
void AppendCodePoint(std::basic_string<CodeUnit>& text, char32_t codePoint);

} // namespace QMT
