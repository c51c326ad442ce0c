#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "qmt/general/files.h"

namespace QMT {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

// What the flags of a ParsableText ask for, while its text is walked.
class Splitter {
public:
    explicit Splitter(ParsableText const& flags)
        : collapsesRuns(!flags.splitOnLineEnds && !flags.splitOnBackslash && !flags.splitOnSlash) {
        AddIf(flags.splitOnBackslash, u"\\");
        AddIf(flags.splitOnSlash, u"/");
        pathSeparators = separators;
        splitsLines = flags.splitOnLineEnds;
        AddIf(splitsLines, u"\n\r");
        AddIf(flags.splitOnFields, u"\t");
        AddIf(separators.empty(), u" \t\n\r");
    }

    // Moves position behind the next element and its separator. False, the position moved to the end, when
    // there is none.
    bool Next(TextView text, std::size_t& position, TextView& element) const {
        SkipToElement(text, position);
        if (position >= text.size()) {
            return false;
        }
        std::size_t const end = std::min(text.find_first_of(separators, position), text.size());
        element = text.substr(position, end - position);
        position = end + SeparatorLength(text, end);
        return true;
    }

private:
    void AddIf(bool wanted, std::u16string_view more) {
        if (wanted) {
            separators.append(more.begin(), more.end());
        }
    }

    void SkipToElement(TextView text, std::size_t& position) const {
        if (collapsesRuns) {
            position = std::min(text.find_first_not_of(separators, position), text.size());
        } else if (position == 0 && !text.empty() && pathSeparators.find(text[0]) != TextView::npos) {
            position = 1;
        }
    }

    std::size_t SeparatorLength(TextView text, std::size_t at) const {
        if (at == text.size()) {
            return 0;
        }
        return splitsLines && text[at] == u'\r' && text.substr(at + 1).starts_with(u'\n') ? 2 : 1;
    }

    std::basic_string<CodeUnit> separators;
    std::basic_string<CodeUnit> pathSeparators;
    bool splitsLines = false;
    bool collapsesRuns;
};

} // namespace

ParsableText::ParsableText(String wholeText) : text(std::move(wholeText)) {}

bool ParsableText::GetNextElem(String* elem, int) {
    TextView element;
    bool const found = Splitter(*this).Next(text.View(), position, element);
    if (found) {
        *elem = String(element);
    }
    return found;
}

int ParsableText::CountElements() const {
    Splitter const splitter(*this);
    std::size_t counted = position;
    int count = 0;
    for (TextView element; splitter.Next(text.View(), counted, element);) {
        ++count;
    }
    return count;
}

} // namespace QMT
