// What tests of every folder need: the headers of the language and of GoogleTest that most use, readable
// failures, and values and errors turned into text.
#pragma once

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qmt/general/errors.h"
#include "qmt/general/string.h"
#include "support/seed.h"

namespace QMT {

// Lets GoogleTest print text: ASCII as it is, other code units in hexadecimal.
inline void PrintTo(String const& text, std::ostream* out) {
    for (CodeUnit const unit : text.View())
        if (unit >= 0x20 && unit < 0x7F)
            *out << static_cast<char>(unit);
        else
            *out << "{" << std::hex << unsigned{unit} << std::dec << "}";
}

// The values as text, with a bar behind each.
template <class... Values>
String Joined(Values const&... values) {
    String text;
    ((text << values << u"|"), ...);
    return text;
}

inline String Repeated(std::size_t count, CodeUnit unit) {
    return String(std::basic_string<CodeUnit>(count, unit));
}

// The elements of an array of ours, with a bar behind each.
template <class Array>
String Listed(Array const& array) {
    String text;
    for (std::size_t i = 0; i < array.Size(); ++i)
        text << array[i] << u"|";
    return text;
}

// The text of the error, which is deleted; empty for null.
inline String TakeError(ErrorInfo* error) {
    std::unique_ptr<ErrorInfo> const owner(error);
    return owner ? static_cast<String const&>(*owner) : String();
}

} // namespace QMT
