#include "qmt/general/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

namespace {

// 64 bits in decimal, or a double in any of its forms, fit with room to spare.
constexpr std::size_t longestNumber = 64;

constexpr double tolerance = 1e-9;
constexpr double leastPlain = 1e-5;
constexpr double greatestPlain = 1e15;

std::chars_format FormatFor(double magnitude) {
    bool const plain = magnitude == 0 || (magnitude >= leastPlain && magnitude <= greatestPlain);
    return plain ? std::chars_format::fixed : std::chars_format::scientific;
}

void Capitalise(char* begin, char* end) {
    std::transform(begin, end, begin,
                   [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
}

ErrorInfo* NumberError(char16_t const* complaint, String const& text) {
    return MakeError(String(complaint) + u": \"" + text + u"\"");
}

[[noreturn]] void ThrowNoNumber(String const& text) {
    throw NumberError(u"Not a number", text);
}

[[noreturn]] void ThrowOutOfRange(String const& text) {
    throw NumberError(u"Number out of range", text);
}

// The trimmed text in one byte a unit; a unit that is no ASCII becomes one that no number has.
std::string ToNumberBytes(String text) {
    text.TrimAll();
    std::string bytes;
    for (CodeUnit const unit : text.View()) {
        bytes += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return bytes;
}

// Takes one sign off the text; true for a minus.
bool TakeSign(std::string_view& digits) {
    bool const negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    return negative;
}

// Reads the digits, all of them, as a number without a sign; throws an error that quotes the text.
template <class Number>
Number ReadMagnitude(std::string_view digits, String const& text) {
    // Signs are taken by now, and words such as inf are no numbers.
    if (digits.find_first_of("0123456789.") != 0) {
        ThrowNoNumber(text);
    }
    Number magnitude{};
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude);
    if (end != digits.data() + digits.size()) {
        ThrowNoNumber(text);
    }
    if (error != std::errc()) {
        ThrowOutOfRange(text);
    }
    return magnitude;
}

// Reads a whole number whose values are those of Range.
template <class Range>
Range ReadInteger(String const& text) {
    std::string const bytes = ToNumberBytes(text);
    std::string_view digits = bytes;
    bool const negative = TakeSign(digits);
    auto const magnitude = ReadMagnitude<std::uint64_t>(digits, text);
    std::uint64_t const greatest = static_cast<std::uint64_t>(std::numeric_limits<Range>::max());
    std::uint64_t const greatestNegative = std::is_signed_v<Range> ? greatest + 1 : 0;
    if (magnitude > (negative ? greatestNegative : greatest)) {
        ThrowOutOfRange(text);
    }
    return static_cast<Range>(negative ? 0 - magnitude : magnitude);
}

double ReadDouble(String const& text) {
    std::string const bytes = ToNumberBytes(text);
    std::string_view digits = bytes;
    bool const negative = TakeSign(digits);
    auto const magnitude = ReadMagnitude<double>(digits, text);
    return negative ? -magnitude : magnitude;
}

} // namespace

String& String::AppendNumber(std::string_view sign, std::string_view digits) {
    std::size_t const length = sign.size() + digits.size();
    std::size_t const places = static_cast<std::size_t>(std::max(format.places, 0));
    std::size_t const fill = places - std::min(places, length);
    if (!fillWithZeros) {
        text.append(fill, u' ');
    }
    text.append(sign.begin(), sign.end());
    if (fillWithZeros) {
        text.append(fill, u'0');
    }
    text.append(digits.begin(), digits.end());
    format = {false, 0};
    fillWithZeros = false;
    return *this;
}

String& String::AppendUnsigned(unsigned long long number) {
    char digits[longestNumber];
    char* const end = std::to_chars(digits, std::end(digits), number, format.hexadecimal ? 16 : 10).ptr;
    Capitalise(digits, end);
    return AppendNumber({}, {digits, end});
}

String& String::AppendSigned(long long number, unsigned long long twosComplement) {
    if (number >= 0 || format.hexadecimal) {
        return AppendUnsigned(twosComplement);
    }
    char digits[longestNumber];
    char* const end = std::to_chars(digits, std::end(digits), number).ptr;
    return AppendNumber("-", {digits + 1, end});
}

String& String::operator<<(int number) {
    return AppendSigned(number, static_cast<std::uint32_t>(number));
}

String& String::operator<<(unsigned int number) {
    return AppendUnsigned(number);
}

String& String::operator<<(long int number) {
    return *this << static_cast<std::int32_t>(number);
}

String& String::operator<<(unsigned long int number) {
    return *this << static_cast<std::uint32_t>(number);
}

String& String::operator<<(long long number) {
    return AppendSigned(number, static_cast<unsigned long long>(number));
}

String& String::operator<<(unsigned long long number) {
    return AppendUnsigned(number);
}

String& String::operator<<(double number) {
    double const magnitude = std::abs(number);
    char digits[longestNumber];
    char* const end = std::to_chars(digits, std::end(digits), magnitude, FormatFor(magnitude)).ptr;
    return AppendNumber(std::signbit(number) ? "-" : "", {digits, end});
}

String& String::operator<<(FormatManipulationData setting) noexcept {
    format.hexadecimal = format.hexadecimal || setting.hexadecimal;
    format.places = setting.places;
    return *this;
}

void String::operator>>(int& number) const {
    number = ReadInteger<int>(*this);
}

void String::operator>>(unsigned int& number) const {
    number = ReadInteger<unsigned int>(*this);
}

void String::operator>>(long int& number) const {
    number = ReadInteger<std::int32_t>(*this);
}

void String::operator>>(unsigned long int& number) const {
    number = ReadInteger<std::uint32_t>(*this);
}

void String::operator>>(long long& number) const {
    number = ReadInteger<long long>(*this);
}

void String::operator>>(unsigned long long& number) const {
    number = ReadInteger<unsigned long long>(*this);
}

void String::operator>>(double& number) const {
    number = ReadDouble(*this);
}

String::FormatManipulationData hex(int digits) noexcept {
    return {true, digits};
}

String::FormatManipulationData width(int characters) noexcept {
    return {false, characters};
}

String& leadzero(String& text) noexcept {
    text.fillWithZeros = true;
    return text;
}

int compare(double left, double right) noexcept {
    if (std::isnan(left) || std::isnan(right)) {
        return static_cast<int>(std::isnan(right)) - static_cast<int>(std::isnan(left));
    }
    double const allowed = tolerance * std::max({1.0, std::abs(left), std::abs(right)});
    bool const isNear = std::isfinite(allowed) && std::abs(left - right) <= allowed;
    if (left == right || isNear) {
        return 0;
    }
    return left < right ? -1 : 1;
}

} // namespace QMT
