// Paths as bytes, and names in bytes as text, for all of the seam where the system names files by bytes.
#pragma once

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utf8.h>

#include "platform/code_points.h"

namespace QMT::platform {

// What a byte of a name that is no UTF-8 is added to, for the surrogate that stands for it in text.
inline constexpr std::uint32_t escapedByteBase = 0xDC00;

// The usual path, at the lowest cost: nearly every access to a file needs one.
inline bool NarrowAscii(std::basic_string_view<CodeUnit> path, std::string& name) {
    name.resize(path.size());
    unsigned int bits = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        bits |= path[i];
        name[i] = static_cast<char>(path[i]);
    }
    return bits < 0x80;
}

// The path as platform/files.h tells.
inline std::string ToPathBytes(std::basic_string_view<CodeUnit> path) {
    std::string name;
    if (NarrowAscii(path, name)) {
        return name;
    }
    name.clear();
    for (std::size_t i = 0; i < path.size();) {
        std::uint32_t const codePoint = NextCodePoint(path, i);
        if (codePoint >= escapedByteBase + 0x80 && codePoint <= escapedByteBase + 0xFF) {
            name += static_cast<char>(codePoint - escapedByteBase);
        } else {
            utf8::unchecked::append(codePoint, std::back_inserter(name));
        }
    }
    return name;
}

// The other way about: a byte that is no UTF-8 becomes the lone surrogate that stands for it.
inline std::basic_string<CodeUnit> FromFileName(std::string_view name) {
    std::basic_string<CodeUnit> text;
    while (!name.empty()) {
        auto const invalid = utf8::find_invalid(name.begin(), name.end());
        utf8::unchecked::utf8to16(name.begin(), invalid, std::back_inserter(text));
        name.remove_prefix(static_cast<std::size_t>(invalid - name.begin()));
        if (!name.empty()) {
            text += static_cast<CodeUnit>(escapedByteBase + static_cast<unsigned char>(name.front()));
            name.remove_prefix(1);
        }
    }
    return text;
}

} // namespace QMT::platform
