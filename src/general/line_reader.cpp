#include "general/line_reader.h"

namespace QMT {

namespace {

constexpr std::size_t bufferSize = 16 * 1024;

constexpr CodeUnit lineFeed = u'\n';
constexpr CodeUnit carriageReturn = u'\r';
constexpr CodeUnit breaks[] = {lineFeed, carriageReturn, 0};

} // namespace

LineReader::LineReader(FileMedium::File& file)
    : source(file), buffer(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

bool LineReader::Next(std::basic_string<CodeUnit>& line, ErrorInfo*& error) {
    line.clear();
    hadBreak = false;
    bool began = false;
    while (!hadBreak && HasText(error)) {
        began = true;
        hadBreak = TakeUpToBreak(line);
    }
    if (error) {
        line.clear();
    }
    return began && !error;
}

// Reads on until there is text that no line has taken yet. False at the end and after a failure.
bool LineReader::HasText(ErrorInfo*& error) {
    SkipRestOfBreak();
    while (position == text.size() && !ended) {
        Refill(error);
        SkipRestOfBreak();
    }
    return position < text.size();
}

void LineReader::Refill(ErrorInfo*& error) {
    std::size_t count = 0;
    error = source.Read(buffer.get(), bufferSize, count);
    ended = error || count == 0;
    text.clear();
    position = 0;
    if (!error) {
        decoder.Decode({buffer.get(), count}, ended, text);
    }
}

// Passes over the line feed that follows a carriage return, once it is there to be seen.
void LineReader::SkipRestOfBreak() {
    if (afterCarriageReturn && position < text.size()) {
        afterCarriageReturn = false;
        if (text[position] == lineFeed) {
            ++position;
        }
    }
}

// Appends to line what stands in front of the next break, and passes the break. False when there is none.
bool LineReader::TakeUpToBreak(std::basic_string<CodeUnit>& line) {
    std::size_t const end = text.find_first_of(breaks, position);
    line.append(text, position, end - position);
    if (end == text.npos) {
        position = text.size();
        return false;
    }
    afterCarriageReturn = text[end] == carriageReturn;
    position = end + 1;
    return true;
}

} // namespace QMT
