// What conversions of code pages give, as text to compare.
#pragma once

#include "qmt/helpers/system.h"
#include "support/text.h"

namespace QMT {

// What a conversion gives, with the length it tells behind it.
inline std::string Bytes(char16_t const* text, unsigned int codePage) {
    unsigned int length = 77;
    String const units(text);
    std::unique_ptr<char[]> const bytes(
        ConvertToMultibyte(text ? static_cast<CodeUnit const*>(units) : nullptr, codePage, &length));
    return std::string(bytes ? bytes.get() : "null") + std::to_string(length);
}

inline String Text(char const* bytes, unsigned int codePage) {
    unsigned int length = 77;
    std::unique_ptr<CodeUnit[]> const text(ConvertFromMultibyte(bytes, codePage, &length));
    return (text ? String(text.get()) : String(u"null")) << length;
}

} // namespace QMT
