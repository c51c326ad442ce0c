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

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// As starts_with, in a few instructions.
template <TextLiteral literal>
bool BeginsWith(TextView text) {
    constexpr std::size_t length = std::size(literal.units) - 1;
    return text.size() >= length && std::memcmp(text.data(), literal.units, length * sizeof(CodeUnit)) == 0;
}

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
            if (blockBegin + blockSize >= text.size()) {
                blockBegin = text.size();
                return blockBegin;
            }
            blockBegin += blockSize;
            ReadBlock(text.substr(blockBegin, blockSize));
        }
        std::size_t const place = blockBegin + static_cast<std::size_t>(std::countr_zero(hits));
        hits &= hits - 1;
        return place;
    }

private:
    static constexpr std::size_t blockSize = 64;

    using Found = std::array<std::uint16_t, blockSize>;

    void ReadBlock(TextView block) {
#if defined(__SSE2__)
        if (block.size() == blockSize) {
            for (std::size_t part = 0; part < blockSize / 16; ++part) {
                std::uint64_t const found = HitsOf16(block.data() + 16 * part);
                hits |= found << 16 * part;
            }
            return;
        }
#endif
        for (std::size_t i = 0; i < block.size(); ++i) {
            hits |= std::uint64_t{((block[i] == units) || ...)} << i;
        }
    }

#if defined(__SSE2__)
    // A unit beyond a byte becomes 0 or 255, which is none of those looked for.
    static std::uint32_t HitsOf16(CodeUnit const* block) {
        static_assert(((units != 0 && units < 255) && ...));
        auto const* const halves = reinterpret_cast<__m128i const*>(block);
        __m128i const bytes = _mm_packus_epi16(_mm_loadu_si128(halves), _mm_loadu_si128(halves + 1));
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(units)))), ...);
        return static_cast<std::uint32_t>(_mm_movemask_epi8(found));
    }
#endif

    TextView text;
    std::size_t blockBegin = std::size_t{0} - blockSize;
    std::uint64_t hits = 0; // the hits of the block that are still to come, a bit for each unit
};

// The first place at or behind from where one of the units stands, the text's size when there is none.
template <char16_t... units>
std::size_t FindAnyOf(TextView text, std::size_t from) {
    return from + PlacesOf<units...>(text.substr(from)).Next();
}

// The place behind the line break that stands at the place, or the place itself at the text's end.
inline std::size_t BehindLineBreak(TextView text, std::size_t place) {
    bool const isPair = place + 1 < text.size() && text[place] == u'\r' && text[place + 1] == u'\n';
    return std::min(place + (isPair ? 2 : 1), text.size());
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
