#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "html/native_text_walk.h"
#include "html/pre_filter.h"
#include "qmt/html/html_parser.h"

namespace QMT {

namespace {

class CoverageCheck : public NativeTextSink {
public:
    CoverageCheck(Map<String, String> const& table, std::vector<std::size_t> const& sourceLineNumbers)
        : natives(table), sourceLines(sourceLineNumbers), isUsed(table.Size(), false) {}

    void Text(TextView text, TextView, std::size_t lineNumber) override {
        if (text.empty()) {
            return;
        }
        int const index = natives.Find(String(text));
        if (index == -1) {
            NoteMissing(text, SourceLine(lineNumber));
        } else {
            isUsed[static_cast<std::size_t>(index)] = true;
        }
    }

    void Lost(std::size_t lineNumber) override { coverage.lostFrom = SourceLine(lineNumber); }

    NativeCoverage Take() {
        for (std::size_t i = 0; i < isUsed.size(); ++i) {
            if (!isUsed[i]) {
                coverage.unused.push_back(natives.Key(i));
            }
        }
        return std::move(coverage);
    }

private:
    std::size_t SourceLine(std::size_t lineNumber) const { return sourceLines[lineNumber - 1]; }

    void NoteMissing(TextView text, std::size_t line) {
        auto const [place, isNew] = missingIndex.try_emplace(TextBuffer(text), coverage.missing.size());
        if (isNew) {
            coverage.missing.push_back({String(text), {}});
        }
        std::vector<std::size_t>& lines = coverage.missing[place->second].lines;
        if (lines.empty() || lines.back() != line) {
            lines.push_back(line);
        }
    }

    Map<String, String> const& natives;
    std::vector<std::size_t> const& sourceLines; // by the number of a filtered line, less one
    std::vector<bool> isUsed;                    // by the index of a key
    std::unordered_map<TextBuffer, std::size_t> missingIndex;
    NativeCoverage coverage;
};

} // namespace

NativeCoverage CheckNativeCoverage(String page, Map<String, String> const& natives, bool parseHead) {
    std::vector<std::size_t> sourceLines;
    String const filtered = FilteredPage(page.View(), &sourceLines);
    CoverageCheck check(natives, sourceLines);
    WalkNativeTexts(filtered.View(), parseHead, check);
    return check.Take();
}

} // namespace QMT
