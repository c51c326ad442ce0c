#include "general/text_decoder.h"

#include <algorithm>

#include "general/utf.h"

namespace QMT {

namespace {

constexpr std::size_t longestMark = 3;
constexpr std::size_t longestSequence = 4;

// How many bytes the UTF-8 sequence with this first byte has; 1 for a byte that begins none.
std::size_t SequenceLength(char first) {
    auto const byte = static_cast<unsigned char>(first);
    return byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
}

// How many bytes at the end may belong to a sequence that goes on behind them.
std::size_t OpenSequence(std::string_view bytes) {
    for (std::size_t length = 1; length < std::min(longestSequence, bytes.size() + 1); ++length) {
        if (SequenceLength(bytes[bytes.size() - length]) > length) {
            return length;
        }
    }
    return 0;
}

void AppendUtf16(std::basic_string<CodeUnit>& text, std::string_view bytes, std::size_t lowByte) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        auto const low = static_cast<unsigned char>(bytes[i + lowByte]);
        auto const high = static_cast<unsigned char>(bytes[i + 1 - lowByte]);
        text += static_cast<CodeUnit>(high << 8 | low);
    }
    if (bytes.size() % 2 != 0) {
        text += replacementUnit;
    }
}

} // namespace

void TextDecoder::Decode(std::string_view bytes, bool last, std::basic_string<CodeUnit>& text) {
    pending += bytes;
    std::size_t taken = 0;
    if (encoding == Encoding::Unknown) {
        if (pending.size() < longestMark && !last) {
            return;
        }
        taken = TakeMark();
    }
    std::string_view const rest = std::string_view(pending).substr(taken);
    std::size_t const decodable = DecodableBytes(rest, last);
    AppendDecoded(rest.substr(0, decodable), text);
    pending.erase(0, taken + decodable);
}

// Settles the encoding and gives the length of the mark.
std::size_t TextDecoder::TakeMark() {
    std::string_view const head = pending;
    if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) {
        encoding = head.front() == '\xFF' ? Encoding::Utf16LittleEndian : Encoding::Utf16BigEndian;
        return 2;
    }
    encoding = Encoding::Utf8;
    return head.starts_with(utf8Mark) ? utf8Mark.size() : 0;
}

std::size_t TextDecoder::DecodableBytes(std::string_view bytes, bool last) const {
    if (last) {
        return bytes.size();
    }
    return bytes.size() - (encoding == Encoding::Utf8 ? OpenSequence(bytes) : bytes.size() % 2);
}

void TextDecoder::AppendDecoded(std::string_view bytes, std::basic_string<CodeUnit>& text) const {
    if (encoding == Encoding::Utf8) {
        AppendDecodedUtf8(text, bytes);
    } else {
        AppendUtf16(text, bytes, encoding == Encoding::Utf16LittleEndian ? 0 : 1);
    }
}

} // namespace QMT
