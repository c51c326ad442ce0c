#include "html/native_text_jobs.h"

#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "html/native_text_walk.h"
#include "html/text_set.h"
#include "html/text_sort.h"

namespace QMT {

namespace {

// Gathers new texts beside the array, which would take too long to search and to insert into for each of
// them.
class Collector : public NativeTextSink {
public:
    explicit Collector(VArray<String, String> const& strings) {
        for (std::size_t i = 0; i < strings.Size(); ++i) {
            if (TextSet::Place const place = known.Find(strings[i].View()); !place.isTaken) {
                known.Add(strings[i], place);
            }
        }
    }

    void Text(TextView text, TextView, std::size_t) override {
        if (TextSet::Place const place = known.Find(text); !place.isTaken && !text.empty()) {
            known.Add(found.emplace_back(text), place);
        }
    }

    // The new texts in the order of the page. No text is looked for any more once they are changed.
    std::deque<String>& Found() { return found; }

private:
    std::deque<String> found; // its elements stay in their place
    TextSet known;
};

// Merges from the back, where there is room. found is left in no useful state.
void MergeSorted(VArray<String, String>& strings, std::deque<String>& found) {
    std::vector<String*> const sorted = SortedPointers(found);
    std::size_t old = strings.Size();
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        strings.Add(String());
    }
    std::size_t left = sorted.size();
    while (left > 0) {
        std::size_t const to = old + left - 1;
        bool const oldIsGreater = old > 0 && *sorted[left - 1] < strings[old - 1];
        strings[to] = std::move(oldIsGreater ? strings[--old] : *sorted[--left]);
    }
}

// Finds a text in a line in time in proportion to both, whatever they hold. Where the plain search begins
// anew, this one keeps the longest beginning of the text that what it has just read still ends in.
std::size_t FirstPlaceOfLong(TextView text, TextView line) {
    std::vector<std::size_t> shorter(text.size() + 1); // by the length of a beginning: the next one to try
    std::size_t matched = 0;
    auto const take = [&](CodeUnit unit) {
        while (matched > 0 && text[matched] != unit) {
            matched = shorter[matched];
        }
        if (text[matched] == unit) {
            ++matched;
        }
    };
    for (std::size_t i = 1; i < text.size(); ++i) {
        take(text[i]);
        shorter[i + 1] = matched;
    }
    matched = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        take(line[i]);
        if (matched == text.size()) {
            return i + 1 - text.size();
        }
    }
    return nowhere;
}

// Where the text, which is not empty, first stands in the line. A paragraph's text is the whole line.
std::size_t FirstPlaceOf(TextView text, TextView line) {
    constexpr std::size_t longText = 64;
    if (line.starts_with(text)) {
        return 0;
    }
    return text.size() < longText ? line.find(text) : FirstPlaceOfLong(text, line);
}

class Substitution : public NativeTextSink {
public:
    Substitution(TextView page, Map<String, String> const& table)
        : out(page.size() + page.size() / 8), natives(table) {}

    void Line(TextView line) override { out.AddLine(line); }

    void Text(TextView text, TextView line, std::size_t) override { Replace(text, line, out); }

    // Each text ends the line anew, so that a blank line stands behind it for each.
    void Field(TextView line, std::optional<TextView> value, std::optional<TextView> placeholder,
               std::size_t) override {
        TextBuffer result(line);
        for (std::optional<TextView> const& text : {value, placeholder}) {
            if (text) {
                PageWriter replaced(result.size());
                Replace(*text, result, replaced);
                result = std::move(replaced.Text());
            }
        }
        out.AddLine(result);
    }

    String Take() { return out.Take(); }

private:
    // An earlier replacement in the line may have destroyed the text; then the line stays.
    void Replace(TextView text, TextView line, PageWriter& writer) const {
        int const index = text.empty() ? -1 : natives.Find(String(text));
        std::size_t const place = index == -1 ? nowhere : FirstPlaceOf(text, line);
        if (place == nowhere) {
            writer.AddLine(line);
            return;
        }
        writer.Append(line.substr(0, place));
        writer.Append(natives.Value(static_cast<std::size_t>(index)).View());
        writer.AddLine(line.substr(place + text.size()));
    }

    PageWriter out;
    Map<String, String> const& natives;
};

} // namespace

void CollectNativeTexts(TextView page, bool parseHead, VArray<String, String>& strings,
                        NonSortableVArray<String>* inPageOrder) {
    Collector collector(strings);
    WalkNativeTexts(page, parseHead, collector);
    for (std::size_t i = 0; inPageOrder && i < collector.Found().size(); ++i) {
        inPageOrder->Add(collector.Found()[i]);
    }
    MergeSorted(strings, collector.Found());
}

String SubstitutedPage(TextView page, bool parseHead, Map<String, String> const& natives) {
    Substitution substitution(page, natives);
    WalkNativeTexts(page, parseHead, substitution);
    return substitution.Take();
}

} // namespace QMT
