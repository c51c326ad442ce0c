// The walk over text by code points, for every side that turns text into bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

inline bool IsHighSurrogate(CodeUnit unit) noexcept {
    return (unit & 0xFC00) == 0xD800;
}

inline bool IsLowSurrogate(CodeUnit unit) noexcept {
    return (unit & 0xFC00) == 0xDC00;
}

// The code point at the index, which moves behind it. A lone surrogate is given as it is.
inline std::uint32_t NextCodePoint(std::basic_string_view<CodeUnit> text, std::size_t& index) noexcept {
    std::uint32_t const unit = text[index++];
    bool const isPair =
        IsHighSurrogate(static_cast<CodeUnit>(unit)) && index < text.size() && IsLowSurrogate(text[index]);
    return isPair ? 0x10000 + ((unit & 0x3FF) << 10 | (text[index++] & 0x3FFU)) : unit;
}

} // namespace QMT::platform
