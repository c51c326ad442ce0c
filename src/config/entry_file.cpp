#include "config/entry_file.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/settled_file.h"
#include "qmt/general/files.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

constexpr int mostReads = 8;
constexpr int readsWithoutPause = 3;
constexpr unsigned int pause = 1; // milliseconds

struct FirstLine {
    String text;
    bool isComplete = false; // a line break stands behind it

    bool operator==(FirstLine const& other) const = default;
};

// The first line as bytes of UTF-8, zero-terminated in place of its break; null when the head holds none.
char const* FindPlainLine(char* head, std::size_t count) {
    constexpr char ends[] = {'\n', '\r', '\0'};
    char* const end = std::find_first_of(head, head + count, std::begin(ends), std::end(ends));
    bool const isUtf16 = count > 0 && (head[0] == '\xFE' || head[0] == '\xFF');
    if (isUtf16 || end == head + count || *end == '\0') {
        return nullptr;
    }
    *end = '\0';
    return head;
}

enum class Outcome { NoFile, Settled, Unclear };

// The usual case at the lowest cost: a short text in UTF-8 that nobody is writing.
Outcome ReadShortLine(String const& path, String& text) {
    char head[platform::settledHeadSize];
    std::size_t count = 0;
    bool agree = false;
    if (platform::ReadHeadTwice(path.View(), head, count, agree)) {
        return Outcome::NoFile;
    }
    char const* const line = agree ? FindPlainLine(head, count) : nullptr;
    if (!line) {
        return Outcome::Unclear;
    }
    text = DecodeFromUTF8(line, true);
    return Outcome::Settled;
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

// Any line, whatever its length and encoding, also one that never settles.
bool ReadAnyLine(String const& path, String& text) {
    FirstLine line;
    bool isSettled = false;
    for (int reads = 0; reads < mostReads && !isSettled; ++reads) {
        if (reads >= readsWithoutPause) {
            MS_Sleep(pause);
        }
        FirstLine const before = std::move(line);
        line = FirstLine();
        if (!ReadFirstLine(path, line)) {
            return false;
        }
        isSettled = reads > 0 && line.isComplete && line == before;
    }
    text = std::move(line.text);
    return true;
}

} // namespace

bool ReadEntryFile(String const& path, String& text) {
    text.SetEmpty();
    Outcome const outcome = ReadShortLine(path, text);
    return outcome == Outcome::Unclear ? ReadAnyLine(path, text) : outcome == Outcome::Settled;
}

} // namespace QMT
