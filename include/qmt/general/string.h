// The text type of the family, and the manipulators that format numbers on their way into it.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "qmt/export.h"
#include "qmt/general/code_unit.h"

namespace QMT {

// A growable text of 16-bit code units with value semantics.
//
// The caller uses a String from one thread at a time, and keeps pointers and references into it only until
// its next change. Lengths and indices count code units; a surrogate pair counts as two.
//
// Guaranteed: any sequence of units is kept as it is, zeros and lone surrogates included. Nothing depends
// on the locale. Text given as L"..." and u"..." is taken alike; u"..." costs no conversion. A null pointer
// to text counts as an empty text. Strings move cheaply and are passed by value.
//
//     String line;
//     line << u"block " << leadzero << hex(8) << address << newline;
class QMT_GENU_API String {
public:
    // One setting on its way from hex or width to the next number.
    struct FormatManipulationData {
        bool hexadecimal; // base 16 instead of 10
        int places;       // the least number of characters
    };

    String() = default;
    String(CodeUnit const* zeroTerminated);
    String(OtherCodeUnit const* zeroTerminated);

    explicit String(std::basic_string_view<CodeUnit> units) : text(units) {}

    explicit String(std::basic_string<CodeUnit> units) noexcept : text(std::move(units)) {}

    // Length in code units, without the terminator.
    std::size_t Len() const noexcept { return text.size(); }

    bool IsEmpty() const noexcept { return text.empty(); }

    void SetEmpty() noexcept { text.clear(); }

    // Keeps the leading count units; a text that is no longer than that stays as it is.
    void Truncate(std::size_t count);

    // One unit in place. The index is at most Len(), where the terminator stands; that one is only read.
    template <std::integral Index>
    CodeUnit& operator[](Index index) {
        return text[static_cast<std::size_t>(index)];
    }

    template <std::integral Index>
    CodeUnit const& operator[](Index index) const {
        return text[static_cast<std::size_t>(index)];
    }

    // The text with a zero behind it, Len() + 1 units, valid until the next change. Never null.
    operator CodeUnit const*() const noexcept { return text.c_str(); }

    // A text is neither true nor false; ask IsEmpty().
    explicit operator bool() const = delete;

    // The units without a copy, valid until the next change.
    std::basic_string_view<CodeUnit> View() const noexcept { return text; }

    // Index in the whole text of the first occurrence at or behind the position from; -1 when there is none.
    int Find(String const& part, std::size_t from = 0) const noexcept;

    // Index of the last occurrence; -1 when there is none.
    int FindLast(String const& part) const noexcept;

    // The leading or trailing count units; the whole text when it has fewer.
    String Left(std::size_t count) const;
    String Right(std::size_t count) const;

    // The units from the position on, at most count of them; empty when the text ends at or before it.
    String Mid(std::size_t from, std::size_t count = std::basic_string_view<CodeUnit>::npos) const;

    // Removes blanks, tabs and line breaks from both ends, in place.
    String& TrimAll();

    String& operator+=(String const& other);

    friend String operator+(String left, String const& right) { return std::move(left += right); }

    // Without these a number or a character would step through the text's pointer.
    template <std::integral Number>
    friend void operator+(String const&, Number) = delete;
    template <std::integral Number>
    friend void operator+(Number, String const&) = delete;

    // Exact comparison, unit by unit. It gives all six relations, the text on either side.
    friend bool operator==(String const& left, String const& right) noexcept {
        return left.text == right.text;
    }

    friend bool operator==(String const& left, CodeUnit const* right) { return left.IsSame(right); }

    // Named besides <=>, without which the library's sorting takes this for a comparison of pointers.
    friend bool operator<(String const& left, String const& right) noexcept { return left.text < right.text; }

    friend std::strong_ordering operator<=>(String const& left, String const& right) noexcept {
        return left.text <=> right.text;
    }

    friend std::strong_ordering operator<=>(String const& left, CodeUnit const* right) {
        return left <=> String(right);
    }

    // Text goes in as it is; a setting made for a number waits for the next number.
    String& operator<<(String const& other);
    String& operator<<(CodeUnit const* zeroTerminated);
    String& operator<<(CodeUnit unit);

    // One character of the other wide type: it may become two code units, and U+FFFD stands for what is none.
    String& operator<<(OtherCodeUnit character);

    // These would pass for numbers.
    String& operator<<(char) = delete;
    String& operator<<(signed char) = delete;
    String& operator<<(unsigned char) = delete;
    String& operator<<(char8_t) = delete;
    String& operator<<(char32_t) = delete;

    // Numbers go in as decimal text, or as hex, width and leadzero in front of them say; then the setting
    // is used up. The long ones count as 32-bit values on every system and are wrapped to that; wider counts
    // go in as long long. A negative number in hexadecimal shows its two's complement, capitals are used.
    String& operator<<(int number);
    String& operator<<(unsigned int number);
    String& operator<<(long int number);
    String& operator<<(unsigned long int number);
    String& operator<<(long long number);
    String& operator<<(unsigned long long number);

    // The shortest decimal text that reads back as the same number: plain from 1e-5 to 1e15 and for zero,
    // with an exponent elsewhere, "inf" and "nan" for what is no number. hex only sets its width.
    String& operator<<(double number);

    // hex or width for the next number.
    String& operator<<(FormatManipulationData setting) noexcept;

    // leadzero or newline.
    String& operator<<(String& (*manipulator)(String&)) { return manipulator(*this); }

    // Read the whole text as one number: white space at the ends, one sign and decimal digits, for a double
    // also a point and an exponent. A leading zero means nothing. The long ones have 32 bits on every system.
    // Throw an ErrorInfo*, which the catcher owns and whose text quotes this one, when that is no number or
    // none of the type; the argument then keeps its value.
    void operator>>(int& number) const;
    void operator>>(unsigned int& number) const;
    void operator>>(long int& number) const;
    void operator>>(unsigned long int& number) const;
    void operator>>(long long& number) const;
    void operator>>(unsigned long long& number) const;
    void operator>>(double& number) const;

    // Makes room for so many further units at once, before a long run of appends. The text stays.
    void SetBufferIncrementSize(std::size_t units);

private:
    bool IsSame(CodeUnit const* zeroTerminated) const noexcept;
    String& AppendNumber(std::string_view sign, std::string_view digits);
    String& AppendSigned(long long number, unsigned long long twosComplement);
    String& AppendUnsigned(unsigned long long number);

    friend QMT_GENU_API String& leadzero(String& text) noexcept;

    std::basic_string<CodeUnit> text;
    FormatManipulationData format{false, 0};
    bool fillWithZeros = false;
};

// Writes the next number in hexadecimal with at least so many digits, filled with blanks in front, or with
// zeros after leadzero. Zero or less: as many as the number has.
QMT_GENU_API String::FormatManipulationData hex(int digits) noexcept;

// Fills the next number to at least so many characters, as hex does. A number is never cut.
QMT_GENU_API String::FormatManipulationData width(int characters) noexcept;

// Fills the next number with zeros, behind its sign, instead of blanks. Stands before or behind hex or width.
QMT_GENU_API String& leadzero(String& text) noexcept;

// Appends the system's line break: one line feed, on Windows a carriage return and a line feed.
QMT_GENU_API String& newline(String& text);

QMT_GENU_API String const GetEmptyString();

// Text from zero-terminated UTF-8; null gives an empty text. skipMark leaves out one byte order mark in
// front. Never fails: each byte that belongs to no character becomes U+FFFD, a surrogate in its three-byte
// form becomes that surrogate.
QMT_GENU_API String DecodeFromUTF8(char const* bytes, bool skipMark);

} // namespace QMT
