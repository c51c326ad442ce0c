// What the jobs on a page's text share: views of its units, markers, lines, and the page that comes out.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "qmt/general/code_unit.h"
#include "qmt/general/string.h"

namespace QMT {

using TextView = std::basic_string_view<CodeUnit>;
using TextBuffer = std::basic_string<CodeUnit>;

inline constexpr std::size_t nowhere = TextView::npos;

template <std::size_t size>
struct TextLiteral {
    constexpr TextLiteral(char16_t const (&literal)[size]) { std::copy_n(literal, size, units); }

    CodeUnit units[size]{};
};

// u"..."_view is a view of the literal in the code unit of text, good for ever.
template <TextLiteral literal>
constexpr TextView operator""_view() {
    return {literal.units, std::size(literal.units) - 1};
}

// Markers that more than one job knows.
inline constexpr TextView formatableMarker = u"<div id=\"formatable\""_view;
inline constexpr TextView divisionMarker = u"<div"_view;
inline constexpr TextView divisionEnd = u"</div>"_view;
inline constexpr TextView paragraphMarker = u"<p"_view;
inline constexpr TextView paragraphEnd = u"</p>"_view;
inline constexpr TextView normalBreak = u" <br />"_view;

inline bool Holds(TextView text, TextView marker) {
    return text.find(marker) != nowhere;
}

inline constexpr TextView whiteSpace = u" \t\n\r"_view;

inline bool IsWhiteSpace(CodeUnit unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

// The text without white space at its ends, as String::TrimAll leaves it.
inline TextView Trimmed(TextView text) {
    while (!text.empty() && IsWhiteSpace(text.back())) {
        text.remove_suffix(1);
    }
    while (!text.empty() && IsWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

// Finds the places of some units in a text, which must live on, one after the other. It looks at whole blocks
// without a branch for each unit, which compilers turn into vector instructions.
template <char16_t... units>
class PlacesOf {
public:
    explicit PlacesOf(TextView wholeText) : text(wholeText) {}

    // The next place, the text's size when there is none any more.
    std::size_t Next() {
        while (hits == 0) {
            if (wordBegin + wordSize >= text.size()) {
                wordBegin = text.size();
                return wordBegin;
            }
            wordBegin += wordSize;
            ReadWord();
        }
        return wordBegin + TakeFirstHit();
    }

private:
    static constexpr std::size_t wordSize = sizeof(std::uint64_t);
    static constexpr std::size_t blockSize = 4 * wordSize;

    using Flags = std::array<unsigned char, blockSize>;

    void ReadWord() {
        if (wordBegin % blockSize == 0) {
            ReadBlock(text.substr(wordBegin, blockSize));
        }
        std::memcpy(&hits, flags.data() + wordBegin % blockSize, sizeof hits);
    }

    void ReadBlock(TextView block) {
        Flags found{};
        if (block.size() == blockSize) {
            (AddHits<units>(block.data(), blockSize, found), ...);
        } else {
            (AddHits<units>(block.data(), block.size(), found), ...);
        }
        flags = found;
    }

    // One unit at a time, or compilers find a way to test for all that needs branches.
    template <char16_t unit>
    static void AddHits(CodeUnit const* block, std::size_t size, Flags& found) {
        for (std::size_t i = 0; i < size; ++i) {
            found[i] = static_cast<unsigned char>(found[i] | (block[i] == unit));
        }
    }

    std::size_t TakeFirstHit() {
        constexpr bool isLittleEndian = std::endian::native == std::endian::little;
        int const index = (isLittleEndian ? std::countr_zero(hits) : std::countl_zero(hits)) / 8;
        hits &= ~(std::uint64_t{0xFF} << 8 * (isLittleEndian ? index : 7 - index));
        return static_cast<std::size_t>(index);
    }

    TextView text;
    std::size_t wordBegin = std::size_t{0} - wordSize;
    std::uint64_t hits = 0; // the hits of a word that are still to come, a byte for each unit
    Flags flags{};          // the hits of the block in which the word stands
};

// The first place at or behind from where one of the units stands, the text's size when there is none.
template <char16_t... units>
std::size_t FindAnyOf(TextView text, std::size_t from) {
    return from + PlacesOf<units...>(text.substr(from)).Next();
}

// The place behind the line break that stands at the place, or the place itself at the text's end.
inline std::size_t BehindLineBreak(TextView text, std::size_t place) {
    if (text.substr(place, 2) == u"\r\n"_view) {
        return place + 2;
    }
    return std::min(place + 1, text.size());
}

// Walks the lines of a page, which must live on: the lines that a ParsableText with splitOnLineEnds gives,
// without copies. The last one counts without a line break, and none follows a final line break.
class PageLines {
public:
    explicit PageLines(TextView wholePage) : page(wholePage) {}

    // Gives the next line without its line break; false, and the line as it was, at the end.
    bool Next(TextView& line) {
        if (position == page.size()) {
            return false;
        }
        std::size_t const end = NextLineEnd();
        line = page.substr(position, end - position);
        position = BehindLineBreak(page, end);
        ++number;
        return true;
    }

    // The number of the line that Next gave last, from 1.
    std::size_t Number() const { return number; }

    // Where the next line begins.
    std::size_t Position() const { return position; }

private:
    // A line feed that belongs to a carriage return before it is passed.
    std::size_t NextLineEnd() {
        std::size_t end = lineEnds.Next();
        while (end < position) {
            end = lineEnds.Next();
        }
        return end;
    }

    TextView page;
    PlacesOf<u'\n', u'\r'> lineEnds{page};
    std::size_t position = 0;
    std::size_t number = 0;
};

// The page that comes out of a job, put together line by line.
class PageWriter {
public:
    explicit PageWriter(std::size_t expectedUnits) { text.reserve(expectedUnits); }

    void Append(TextView piece) { text += piece; }

    void EndLine() { text += lineBreak; }

    void AddLine(TextView line) {
        Append(line);
        EndLine();
    }

    TextBuffer& Text() { return text; }

    String Take() { return String(std::move(text)); }

private:
    TextBuffer text;
    TextBuffer const lineBreak{(String() << newline).View()};
};

} // namespace QMT
