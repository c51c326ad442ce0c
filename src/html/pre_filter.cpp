#include "html/pre_filter.h"

#include <algorithm>
#include <array>

namespace QMT {

namespace {

// The tags that are moved, in the order in which a line is split at them. The order shows in the result: the
// first tag with white space before it settles the indentation for those behind it in this list.
enum Step { Paragraph, Cell, Formatable, Division, ParagraphEnd, DivisionEnd, FormEnd, CellEnd, StepCount };

constexpr TextView formEnd = u"</form>"_view;
constexpr TextView cellEnd = u"</td>"_view;

// A stretch of the page from its first unit to the place behind its last.
struct Stretch {
    std::size_t begin;
    std::size_t end;
};

// Where in the page the markers stand that a line holds: the first of each, and all line breaks.
struct LineMarks {
    std::array<std::size_t, StepCount> first;
    std::size_t heading;
    std::vector<Stretch> breaks;

    void Clear() {
        first.fill(nowhere);
        heading = nowhere;
        breaks.clear();
    }

    // Notes what begins at the place, where a "<" stands.
    void Note(TextView page, std::size_t place) {
        TextView const rest = page.substr(place);
        switch (rest.size() > 1 ? rest[1] : CodeUnit{0}) {
        case u'p':
            NoteFirst(first[Paragraph], place);
            break;
        case u't':
            NoteIf(rest.starts_with(u"<td"_view), Cell, place);
            break;
        case u'd':
            NoteIf(rest.starts_with(divisionMarker), Division, place);
            NoteIf(rest.starts_with(formatableMarker), Formatable, place);
            break;
        case u'/':
            NoteIf(rest.starts_with(paragraphEnd), ParagraphEnd, place);
            NoteIf(rest.starts_with(divisionEnd), DivisionEnd, place);
            NoteIf(rest.starts_with(formEnd), FormEnd, place);
            NoteIf(rest.starts_with(cellEnd), CellEnd, place);
            break;
        case u'b':
            NoteBreak(rest, place);
            break;
        case u'h':
            NoteFirst(heading, place);
            break;
        default:
            break;
        }
    }

private:
    static void NoteFirst(std::size_t& known, std::size_t place) { known = known == nowhere ? place : known; }

    void NoteIf(bool isThere, Step step, std::size_t place) {
        if (isThere) {
            NoteFirst(first[step], place);
        }
    }

    void NoteBreak(TextView rest, std::size_t place) {
        constexpr TextView shortForm = u"<br/>"_view;
        constexpr TextView longForm = u"<br />"_view;
        if (rest.starts_with(shortForm)) {
            breaks.push_back({place, place + shortForm.size()});
        } else if (rest.starts_with(longForm)) {
            breaks.push_back({place, place + longForm.size()});
        }
    }
};

// Takes the filtered lines and drops the blank ones.
class FilledLines {
public:
    FilledLines(std::size_t expectedUnits, std::vector<std::size_t>* lineNumbers)
        : out(expectedUnits), sourceLines(lineNumbers) {}

    void Append(TextView piece) { out.Append(piece); }

    void EndLine(std::size_t sourceLine) {
        TextBuffer& text = out.Text();
        if (std::all_of(text.begin() + static_cast<std::ptrdiff_t>(lineStart), text.end(), IsWhiteSpace)) {
            text.resize(lineStart);
            return;
        }
        out.EndLine();
        lineStart = text.size();
        if (sourceLines) {
            sourceLines->push_back(sourceLine);
        }
    }

    String Take() { return out.Take(); }

private:
    PageWriter out;
    std::vector<std::size_t>* sourceLines;
    std::size_t lineStart = 0;
};

// Filters a page in one pass: for each line it gathers the places where the steps split it, and then writes
// the pieces.
//
// All steps look for their markers in the line as it is in the page, although each is meant to look at what
// the steps before it have made of the line. The two agree, because what a step inserts holds no marker and
// falls into none, and because stepping back over white space ends where text was inserted before: in front
// of a tag without white space, or behind a ">".
class PageFilter {
public:
    PageFilter(TextView wholePage, std::vector<std::size_t>* sourceLines)
        : page(wholePage), out(wholePage.size() + wholePage.size() / 8, sourceLines) {}

    String Filter() {
        for (std::size_t begin = 0; begin < page.size();) {
            std::size_t const end = ReadMarks(begin);
            ++lineNumber;
            FindSplits({begin, end});
            WritePieces({begin, end});
            begin = BehindLineBreak(page, end);
        }
        return out.Take();
    }

private:
    // A line break to insert, with the indentation behind it or not.
    struct Split {
        std::size_t place;
        bool isIndented;
    };

    // Notes the marks of the line and gives the place where it ends.
    std::size_t ReadMarks(std::size_t begin) {
        marks.Clear();
        std::size_t place = places.Next();
        for (; place < begin || (place < page.size() && page[place] == u'<'); place = places.Next()) {
            if (place >= begin) {
                marks.Note(page, place);
            }
        }
        return place;
    }

    void FindSplits(Stretch line) {
        splits.clear();
        indent.clear();
        SplitAtOpeningTag(line, Paragraph);
        SplitAtOpeningTag(line, Cell);
        if (marks.first[Formatable] != nowhere) {
            SplitBeforeFormatable(line);
        } else {
            SplitAtOpeningTag(line, Division);
        }
        SplitAtClosingTag(line, ParagraphEnd, paragraphEnd);
        SplitAtClosingTag(line, DivisionEnd, divisionEnd);
        SplitAtClosingTag(line, FormEnd, formEnd);
        SplitAtClosingTag(line, CellEnd, cellEnd);
        if (marks.heading != nowhere && !page.substr(marks.heading).starts_with(u"<html"_view)) {
            SplitBefore(marks.heading, false);
        }
    }

    void SplitAtOpeningTag(Stretch line, Step step) {
        std::size_t const begin = marks.first[step];
        if (begin == nowhere) {
            return;
        }
        std::size_t const close = page.substr(0, line.end).find(u'>', begin);
        if (close != nowhere) {
            SplitOff(line, {begin, close + 1}, true);
        }
    }

    void SplitAtClosingTag(Stretch line, Step step, TextView tag) {
        std::size_t const begin = marks.first[step];
        if (begin != nowhere) {
            SplitOff(line, {begin, begin + tag.size()}, step != CellEnd);
        }
    }

    // Puts the tag on a line of its own.
    void SplitOff(Stretch line, Stretch tag, bool mayBeIndented) {
        bool const wasSettled = !indent.empty();
        SplitBefore(StepBackOverWhitespace(line, tag.begin), wasSettled && mayBeIndented);
        // What stands behind the tag goes in front of all that earlier steps have inserted there.
        splits.insert(std::ranges::lower_bound(splits, tag.end, {}, &Split::place),
                      {tag.end, !indent.empty()});
    }

    // The rest of the line stays behind this tag, and white space before it is repeated by the indentation.
    void SplitBeforeFormatable(Stretch line) {
        std::size_t const begin = StepBackOverWhitespace(line, marks.first[Formatable]);
        SplitBefore(begin, !indent.empty());
    }

    void SplitBefore(std::size_t place, bool isIndented) {
        splits.insert(std::ranges::upper_bound(splits, place, {}, &Split::place), {place, isIndented});
    }

    // Where a tag begins with the white space before it, which becomes the indentation, its last unit first.
    // Once there is an indentation, tags begin where they stand.
    std::size_t StepBackOverWhitespace(Stretch line, std::size_t place) {
        if (!indent.empty()) {
            return place;
        }
        for (; place > line.begin && (page[place - 1] == u' ' || page[place - 1] == u'\t'); --place) {
            indent += page[place - 1];
        }
        return place;
    }

    void WritePieces(Stretch line) {
        auto split = splits.begin();
        auto const writeTo = [&](std::size_t end) {
            for (; split != splits.end() && split->place <= end; ++split) {
                out.Append(page.substr(line.begin, split->place - line.begin));
                out.EndLine(lineNumber);
                out.Append(split->isIndented ? TextView(indent) : TextView());
                line.begin = split->place;
            }
            out.Append(page.substr(line.begin, end - line.begin));
        };
        for (Stretch const& lineBreak : marks.breaks) {
            writeTo(lineBreak.begin);
            out.EndLine(lineNumber);
            out.Append(normalBreak);
            out.EndLine(lineNumber);
            line.begin = lineBreak.end;
        }
        writeTo(line.end);
        out.EndLine(lineNumber);
    }

    TextView page;
    PlacesOf<u'<', u'\n', u'\r'> places{page};
    FilledLines out;
    std::size_t lineNumber = 0;
    // Of the line at hand; they keep their storage from line to line.
    LineMarks marks;
    std::vector<Split> splits;
    TextBuffer indent;
};

} // namespace

String FilteredPage(TextView page, std::vector<std::size_t>* sourceLines) {
    return PageFilter(page, sourceLines).Filter();
}

} // namespace QMT
