// Turns the bytes of a text file into text, piece by piece.
#pragma once

#include <string>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT {

// The caller hands in the file's bytes in order, in pieces of any size, and says which is the last.
//
// Guaranteed: the text does not depend on where the pieces were cut. A byte order mark of UTF-8 or UTF-16 in
// front is honoured and left out; without one the bytes are UTF-8. Bytes that are no text become U+FFFD.
//
//     TextDecoder decoder;
//     decoder.Decode(firstPiece, false, text);
//     decoder.Decode({}, true, text);
class TextDecoder {
public:
    // Appends to text what the bytes make certain, and keeps up to three of them for the next call.
    void Decode(std::string_view bytes, bool last, std::basic_string<CodeUnit>& text);

private:
    enum class Encoding { Unknown, Utf8, Utf16LittleEndian, Utf16BigEndian };

    std::size_t TakeMark();
    std::size_t DecodableBytes(std::string_view bytes, bool last) const;
    void AppendDecoded(std::string_view bytes, std::basic_string<CodeUnit>& text) const;

    Encoding encoding = Encoding::Unknown;
    std::string pending;
};

} // namespace QMT
