// Cuts the text of an open file into lines.
#pragma once

#include <memory>
#include <string>

#include "general/text_decoder.h"
#include "qmt/general/files.h"

namespace QMT {

// The caller keeps the file open and alive as long as the reader, and reads it through nothing else.
//
// Guaranteed: lines come in order, each without its line break, which is a line feed, a carriage return or
// the pair of both; the last one also without one behind it.
//
//     LineReader reader(file);
//     for (std::basic_string<CodeUnit> line; reader.Next(line, error);) { ... }
class LineReader {
public:
    explicit LineReader(FileMedium::File& file);

    // Fills line with the next line. False at the end, and after a failure, which error then owns and after
    // which nothing more is read; line is then empty.
    bool Next(std::basic_string<CodeUnit>& line, ErrorInfo*& error);

    // True when a line break stood behind the line given last.
    bool HadBreak() const noexcept { return hadBreak; }

private:
    bool HasText(ErrorInfo*& error);
    void Refill(ErrorInfo*& error);
    void SkipRestOfBreak();
    bool TakeUpToBreak(std::basic_string<CodeUnit>& line);

    FileMedium::File& source;
    std::unique_ptr<char[]> buffer;
    TextDecoder decoder;
    std::basic_string<CodeUnit> text; // decoded
    std::size_t position = 0;         // in text
    bool ended = false;
    bool hadBreak = false;
    bool afterCarriageReturn = false;
};

} // namespace QMT
