#include "platform/code_pages.h"

#include <algorithm>
#include <limits>
#include <windows.h>

#include "platform/code_points.h"

namespace QMT::platform {

namespace {

constexpr std::size_t longestText = std::numeric_limits<int>::max();
constexpr std::size_t longestCharacter = 4; // bytes, of the code pages that tell bad ones
constexpr CodeUnit replacement = u'\xFFFD';

bool IsKnown(unsigned int codePage) {
    return ::MultiByteToWideChar(codePage, 0, "a", 1, nullptr, 0) > 0;
}

// They have no counterpart in any code page, but the system would write some.
std::basic_string<CodeUnit> WithoutLoneSurrogates(std::basic_string_view<CodeUnit> text) {
    std::basic_string<CodeUnit> whole(text);
    for (std::size_t i = 0; i < text.size();) {
        std::size_t const start = i;
        std::uint32_t const codePoint = NextCodePoint(text, i);
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF)
            whole[start] = u'?';
    }
    return whole;
}

bool Encode(unsigned int codePage, DWORD flags, char const* standIn, std::basic_string_view<CodeUnit> text,
            std::string& bytes) {
    auto const count = static_cast<int>(text.size());
    int const size = ::WideCharToMultiByte(codePage, flags, text.data(), count, nullptr, 0, standIn, nullptr);
    bytes.resize(static_cast<std::size_t>(size));
    return size > 0 && ::WideCharToMultiByte(codePage, flags, text.data(), count, bytes.data(), size, standIn,
                                             nullptr) == size;
}

// Adds the text; false, and nothing added, when the bytes or the flags are refused.
bool Decode(unsigned int codePage, DWORD flags, std::string_view bytes, std::basic_string<CodeUnit>& text) {
    auto const count = static_cast<int>(bytes.size());
    int const units = ::MultiByteToWideChar(codePage, flags, bytes.data(), count, nullptr, 0);
    if (units <= 0)
        return false;
    std::size_t const before = text.size();
    text.resize(before + static_cast<std::size_t>(units));
    return ::MultiByteToWideChar(codePage, flags, bytes.data(), count, text.data() + before, units) == units;
}

// Adds the first character and gives its size in bytes; a byte that begins none is replaced.
std::size_t DecodeFirst(unsigned int codePage, std::string_view bytes, std::basic_string<CodeUnit>& text) {
    for (std::size_t size = 1; size <= std::min(longestCharacter, bytes.size()); ++size) {
        if (Decode(codePage, MB_ERR_INVALID_CHARS, bytes.substr(0, size), text))
            return size;
    }
    text += replacement;
    return 1;
}

} // namespace

bool ToCodePage(unsigned int codePage, std::basic_string_view<CodeUnit> text, std::string& bytes) {
    if (text.size() > longestText || !IsKnown(codePage))
        return false;
    std::string encoded;
    std::basic_string<CodeUnit> const whole = WithoutLoneSurrogates(text);
    bool const isDone = whole.empty() || Encode(codePage, WC_NO_BEST_FIT_CHARS, "?", whole, encoded) ||
                        Encode(codePage, 0, nullptr, whole, encoded); // which knows all characters
    if (isDone)
        bytes = std::move(encoded);
    return isDone;
}

bool FromCodePage(unsigned int codePage, std::string_view bytes, std::basic_string<CodeUnit>& text) {
    if (bytes.size() > longestText || !IsKnown(codePage))
        return false;
    text.clear();
    bool const isDone = bytes.empty() || Decode(codePage, MB_ERR_INVALID_CHARS, bytes, text);
    if (isDone)
        return true;
    if (::GetLastError() == ERROR_INVALID_FLAGS) {
        Decode(codePage, 0, bytes, text); // nothing at all for bytes that only switch between alphabets
        return true;
    }
    while (!bytes.empty())
        bytes.remove_prefix(DecodeFirst(codePage, bytes, text));
    return true;
}

} // namespace QMT::platform
