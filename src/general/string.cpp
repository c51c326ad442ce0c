#include "qmt/general/string.h"

#include <algorithm>

#include "general/utf.h"
#include "platform/files.h"

namespace QMT {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

TextView ViewOf(CodeUnit const* zeroTerminated) noexcept {
    return zeroTerminated ? TextView(zeroTerminated) : TextView();
}

int ToIndex(std::size_t position) noexcept {
    return position == TextView::npos ? -1 : static_cast<int>(position);
}

} // namespace

String::String(CodeUnit const* zeroTerminated) : text(ViewOf(zeroTerminated)) {}

String::String(OtherCodeUnit const* zeroTerminated) {
    for (; zeroTerminated && *zeroTerminated; ++zeroTerminated) {
        AppendCodePoint(text, static_cast<char32_t>(*zeroTerminated));
    }
}

void String::Truncate(std::size_t count) {
    if (count < text.size()) {
        text.resize(count);
    }
}

int String::Find(String const& part, std::size_t from) const noexcept {
    return ToIndex(text.find(part.text, from));
}

int String::FindLast(String const& part) const noexcept {
    return ToIndex(text.rfind(part.text));
}

String String::Left(std::size_t count) const {
    return String(View().substr(0, count));
}

String String::Right(std::size_t count) const {
    return String(View().substr(Len() - std::min(count, Len())));
}

String String::Mid(std::size_t from, std::size_t count) const {
    return String(View().substr(std::min(from, Len()), count));
}

String& String::TrimAll() {
    constexpr CodeUnit whiteSpace[] = {u' ', u'\t', u'\n', u'\r', 0};
    text.erase(text.find_last_not_of(whiteSpace) + 1);
    text.erase(0, text.find_first_not_of(whiteSpace));
    return *this;
}

String& String::operator+=(String const& other) {
    text += other.text;
    return *this;
}

String& String::operator<<(String const& other) {
    return *this += other;
}

String& String::operator<<(CodeUnit const* zeroTerminated) {
    text += ViewOf(zeroTerminated);
    return *this;
}

String& String::operator<<(CodeUnit unit) {
    text += unit;
    return *this;
}

String& String::operator<<(OtherCodeUnit character) {
    AppendCodePoint(text, static_cast<char32_t>(character));
    return *this;
}

void String::SetBufferIncrementSize(std::size_t units) {
    text.reserve(text.size() + units);
}

bool String::IsSame(CodeUnit const* zeroTerminated) const noexcept {
    return text == ViewOf(zeroTerminated);
}

String& newline(String& text) {
    return text << platform::lineBreak;
}

String const GetEmptyString() {
    return String();
}

String DecodeFromUTF8(char const* bytes, bool skipMark) {
    std::string_view rest = bytes ? bytes : "";
    if (skipMark && rest.starts_with(utf8Mark)) {
        rest.remove_prefix(utf8Mark.size());
    }
    std::basic_string<CodeUnit> text;
    AppendDecodedUtf8(text, rest);
    return String(std::move(text));
}

} // namespace QMT
