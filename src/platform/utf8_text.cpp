#include "platform/utf8_text.h"

#include <iterator>
#include <utf8.h>

#include "platform/code_points.h"

namespace QMT::platform {

namespace {

constexpr CodeUnit replacement = 0xFFFD;
constexpr std::size_t surrogateSize = 3;

bool IsSurrogate(std::string_view bytes) {
    auto const isTail = [bytes](std::size_t index) { return (bytes[index] & 0xC0) == 0x80; };
    return bytes.size() >= surrogateSize && bytes[0] == '\xED' && isTail(1) && isTail(2);
}

} // namespace

std::string ToUtf8(std::basic_string_view<CodeUnit> text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        utf8::unchecked::append(NextCodePoint(text, i), std::back_inserter(bytes));
    }
    return bytes;
}

std::basic_string<CodeUnit> FromUtf8(std::string_view bytes) {
    std::basic_string<CodeUnit> text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        auto const invalid = utf8::find_invalid(bytes.begin(), bytes.end());
        utf8::unchecked::utf8to16(bytes.begin(), invalid, std::back_inserter(text));
        bytes.remove_prefix(static_cast<std::size_t>(invalid - bytes.begin()));
        if (IsSurrogate(bytes)) {
            text += static_cast<CodeUnit>(0xD000 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F));
            bytes.remove_prefix(surrogateSize);
        } else if (!bytes.empty()) {
            text += replacement;
            bytes.remove_prefix(1);
        }
    }
    return text;
}

} // namespace QMT::platform
