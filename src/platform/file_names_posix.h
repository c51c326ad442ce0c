// Names as the system gives them: bytes.
#pragma once

#include <iterator>
#include <string>
#include <string_view>
#include <utf8.h>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// A byte b that is no UTF-8 becomes the lone surrogate escapedByteBase + b, as platform/files.h tells.
constexpr std::uint32_t escapedByteBase = 0xDC00;

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
