#include "html/width_format.h"

#include <vector>

#include "html/row_lines.h"

namespace QMT {

namespace {

constexpr int longestBlankRun = 2;

// Takes the words of a text one by one, without copies.
class Words {
public:
    explicit Words(TextView wholeText) : rest(wholeText) {}

    bool Next(TextView& word) {
        std::size_t const begin = rest.find_first_not_of(whiteSpace);
        if (begin == nowhere) {
            return false;
        }
        rest.remove_prefix(begin);
        word = rest.substr(0, FindAnyOf<u' ', u'\t', u'\n', u'\r'>(rest, 0));
        rest.remove_prefix(word.size());
        return true;
    }

private:
    TextView rest;
};

// One walk over a page, which copies what lies outside the paragraphs to wrap.
class WidthFormatter {
public:
    WidthFormatter(TextView wholePage, std::size_t characters)
        : page(wholePage),
          lines(wholePage),
          out(wholePage.size() + wholePage.size() / 8),
          width(characters) {}

    String Format() {
        for (TextView line; lines.Next(line);) {
            out.AddLine(line);
            if (Holds(line, formatableMarker)) {
                FormatBlock();
            }
        }
        return out.Take();
    }

private:
    // From behind the line that opens the block up to and with the line that closes it.
    void FormatBlock() {
        int depth = 1;
        for (TextView line; depth > 0 && lines.Next(line);) {
            out.AddLine(line);
            if (Holds(line, u"<p>"_view) && !FormatParagraph(line)) {
                return;
            }
            if (Holds(line, divisionMarker)) {
                ++depth;
            } else if (Holds(line, divisionEnd)) {
                --depth;
            }
        }
    }

    // Writes the paragraph and the line that ends it, which becomes the current line. False, and nothing
    // written, when the page ends before.
    bool FormatParagraph(TextView& line) {
        std::size_t const begin = lines.Position();
        std::size_t end = begin;
        while (lines.Next(line)) {
            if (Holds(line, paragraphEnd) || Holds(line, u"<span"_view)) {
                WriteParagraph(page.substr(begin, end - begin));
                out.AddLine(line);
                return true;
            }
            end = lines.Position();
        }
        return false;
    }

    void WriteParagraph(TextView paragraph) {
        blankRun = 0;
        row.clear();
        Words words(paragraph);
        for (TextView word; words.Next(word);) {
            if (word != u"<br"_view) {
                row.push_back(word);
                continue;
            }
            words.Next(word); // the rest of the break, "/>"
            WriteRow();
            row.clear();
        }
        if (!row.empty()) {
            WriteRow();
        }
    }

    void WriteRow() {
        if (row.empty()) {
            WriteBlankLine(false);
            return;
        }
        std::vector<std::size_t> const starts = LineStarts(row, width);
        for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
            if (starts[i] == starts[i + 1]) {
                WriteBlankLine(true);
            } else {
                WriteTextLine(starts[i], starts[i + 1]);
            }
        }
    }

    // Of a longer run the lines have no break tag; only those that wrapping has left are there at all.
    void WriteBlankLine(bool isLeftByWrapping) {
        if (blankRun < longestBlankRun) {
            out.AddLine(normalBreak);
        } else if (isLeftByWrapping) {
            out.EndLine();
        }
        ++blankRun;
    }

    void WriteTextLine(std::size_t begin, std::size_t end) {
        out.Append(row[begin]);
        for (std::size_t i = begin + 1; i < end; ++i) {
            out.Append(u" "_view);
            out.Append(row[i]);
        }
        out.AddLine(normalBreak);
        blankRun = 1;
    }

    TextView page;
    PageLines lines;
    PageWriter out;
    std::size_t width;
    std::vector<TextView> row; // words between two line breaks of a paragraph
    int blankRun = 0;          // blank lines since the paragraph's start; a line of text counts as one
};

} // namespace

String FormattedPage(TextView page, std::size_t width) {
    return WidthFormatter(page, width).Format();
}

} // namespace QMT
