#include "general/utf.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utf8.h>

#include "platform/code_points.h"

namespace QMT {

namespace {

constexpr std::size_t surrogateFormLength = 3;

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// True when the bytes begin with a surrogate in three-byte form, ED A0 80 to ED BF BF.
bool BeginsWithSurrogateForm(std::string_view bytes) {
    return bytes.size() >= surrogateFormLength && bytes[0] == '\xED' &&
           static_cast<unsigned char>(bytes[1]) >= 0xA0 && IsContinuation(bytes[1]) &&
           IsContinuation(bytes[2]);
}

CodeUnit SurrogateOfForm(std::string_view bytes) {
    return static_cast<CodeUnit>(0xD000 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F));
}

// Takes the ASCII in front off the bytes, which most texts consist of.
void DecodeAscii(std::basic_string<CodeUnit>& text, std::string_view& bytes) {
    auto const end = std::find_if(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
    auto const count = static_cast<std::size_t>(end - bytes.begin());
    std::size_t const before = text.size();
    text.resize(before + count);
    std::copy_n(bytes.begin(), count, text.begin() + static_cast<std::ptrdiff_t>(before));
    bytes.remove_prefix(count);
}

// Takes the run of true UTF-8 in front off the bytes.
void DecodeValidRun(std::basic_string<CodeUnit>& text, std::string_view& bytes) {
    auto const invalid = utf8::find_invalid(bytes.begin(), bytes.end());
    utf8::unchecked::utf8to16(bytes.begin(), invalid, std::back_inserter(text));
    bytes.remove_prefix(static_cast<std::size_t>(invalid - bytes.begin()));
}

// Takes one surrogate or one bad byte off the bytes.
void DecodeInvalid(std::basic_string<CodeUnit>& text, std::string_view& bytes) {
    bool const isSurrogate = BeginsWithSurrogateForm(bytes);
    text += isSurrogate ? SurrogateOfForm(bytes) : replacementUnit;
    bytes.remove_prefix(isSurrogate ? surrogateFormLength : 1);
}

} // namespace

void AppendUtf8(std::string& bytes, std::basic_string_view<CodeUnit> text) {
    bytes.reserve(bytes.size() + text.size());
    for (std::size_t i = 0; i < text.size();) {
        utf8::unchecked::append(platform::NextCodePoint(text, i), std::back_inserter(bytes));
    }
}

void AppendDecodedUtf8(std::basic_string<CodeUnit>& text, std::string_view bytes) {
    text.reserve(text.size() + bytes.size());
    DecodeAscii(text, bytes);
    for (DecodeValidRun(text, bytes); !bytes.empty(); DecodeValidRun(text, bytes)) {
        DecodeInvalid(text, bytes);
    }
}

void AppendCodePoint(std::basic_string<CodeUnit>& text, char32_t codePoint) {
    if (codePoint > 0x10FFFF) {
        text += replacementUnit;
    } else if (codePoint > 0xFFFF) {
        text += static_cast<CodeUnit>(0xD800 + ((codePoint - 0x10000) >> 10));
        text += static_cast<CodeUnit>(0xDC00 + (codePoint & 0x3FF));
    } else {
        text += static_cast<CodeUnit>(codePoint);
    }
}

} // namespace QMT
