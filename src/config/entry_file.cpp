#include "config/entry_file.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <span>
#include <utility>

#include "platform/settled_file.h"
#include "qmt/general/files.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

// Beside a writer that goes on and on, most reads at once after another find it idle, and most of those that
// follow a pause do not; a writer that was held up in the middle needs the pauses.
constexpr int mostReads = 25;
constexpr int readsWithoutPause = 16;
constexpr unsigned int pause = 1; // milliseconds

// In front of another read, so many of which have not been enough.
void PauseBehind(int reads) {
    if (reads >= readsWithoutPause) {
        MS_Sleep(pause);
    }
}

struct FirstLine {
    String text;
    bool isComplete = false; // a line break stands behind it

    bool operator==(FirstLine const& other) const = default;
};

enum class Outcome {
    NoFile,
    Settled,
    Changing, // somebody is writing it, or its only line has no break
    Unusual   // a long line, another encoding, or a zero in it
};

// Puts a zero in place of the break behind the first line, if that is plain UTF-8 and ends in the head.
Outcome CutOffPlainLine(std::span<char, platform::settledHeadSize> head, std::size_t count) {
    constexpr char ends[] = {'\n', '\r', '\0'};
    auto const filled = head.first(count);
    auto const end = std::find_first_of(filled.begin(), filled.end(), std::begin(ends), std::end(ends));
    bool const isUtf16 = count > 0 && (head[0] == '\xFE' || head[0] == '\xFF');
    if (isUtf16 || (end == filled.end() ? count == head.size() : *end == '\0')) {
        return Outcome::Unusual;
    }
    if (end == filled.end()) {
        return Outcome::Changing;
    }
    *end = '\0';
    return Outcome::Settled;
}

// The usual case at the lowest cost: a short text in UTF-8 that nobody is writing.
Outcome ReadShortLine(String const& path, String& text) {
    char head[platform::settledHeadSize];
    std::size_t count = 0;
    bool agree = false;
    if (platform::ReadHeadTwice(path.View(), head, count, agree)) {
        return Outcome::NoFile;
    }
    Outcome const outcome = agree ? CutOffPlainLine(head, count) : Outcome::Changing;
    if (outcome == Outcome::Settled) {
        text = DecodeFromUTF8(head, true);
    }
    return outcome;
}

bool ReadFirstLine(String const& path, FirstLine& line) {
    LineParsableFile file(path, nullptr);
    if (std::unique_ptr<ErrorInfo> const error{file.Open()}) {
        return false;
    }
    ErrorInfo* readError = nullptr;
    file.NextLine(line.text, readError, 0);
    line.isComplete = file.LineHadBreak();
    std::unique_ptr<ErrorInfo> const nobodyToTell(readError);
    std::unique_ptr<ErrorInfo> const norOfThis(file.Close());
    return true;
}

// Any line, whatever its length and encoding. At last what is there.
bool ReadAnyLine(String const& path, int reads, String& text) {
    FirstLine line;
    for (bool isSettled = false; !isSettled && reads <= mostReads; ++reads) {
        PauseBehind(reads);
        FirstLine const before = std::exchange(line, FirstLine());
        platform::LetWriterFinish(path.View());
        if (!ReadFirstLine(path, line)) {
            return false;
        }
        isSettled = line.isComplete && line == before;
    }
    text = std::move(line.text);
    return true;
}

} // namespace

bool ReadEntryFile(String const& path, String& text) {
    text.SetEmpty();
    int reads = 0;
    Outcome outcome = ReadShortLine(path, text);
    while (outcome == Outcome::Changing && ++reads < mostReads) {
        PauseBehind(reads);
        outcome = ReadShortLine(path, text);
    }
    bool const isDone = outcome == Outcome::Settled || outcome == Outcome::NoFile;
    return isDone ? outcome == Outcome::Settled : ReadAnyLine(path, reads, text);
}

} // namespace QMT
