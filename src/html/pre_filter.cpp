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
            NoteIf(BeginsWith<u"<td">(rest), Cell, place);
            break;
        case u'd':
            NoteIf(BeginsWith<u"<div">(rest), Division, place);
            NoteIf(rest.starts_with(formatableMarker), Formatable, place);
            break;
        case u'/':
            NoteClosingTag(rest, place);
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

    void NoteClosingTag(TextView rest, std::size_t place) {
        NoteIf(BeginsWith<u"</p>">(rest), ParagraphEnd, place);
        NoteIf(BeginsWith<u"</div>">(rest), DivisionEnd, place);
        NoteIf(BeginsWith<u"</form>">(rest), FormEnd, place);
        NoteIf(BeginsWith<u"</td>">(rest), CellEnd, place);
    }

    void NoteBreak(TextView rest, std::size_t place) {
        if (BeginsWith<u"<br/>">(rest)) {
            breaks.push_back({place, place + std::size("<br/>") - 1});
        } else if (BeginsWith<u"<br />">(rest)) {
            breaks.push_back({place, place + normalBreak.size() - 1});
        }
    }
};

// A line break to insert, with the indentation behind it or not.
struct Split {
    std::size_t place;
    bool isIndented;
};

// Those of a line, by place.
class Splits {
public:
    void Clear() { count = 0; }

    // Against others at the same place.
    void InsertInFront(Split split) {
        Insert(split, [&](Split const& other) { return other.place >= split.place; });
    }

    void InsertBehind(Split split) {
        Insert(split, [&](Split const& other) { return other.place > split.place; });
    }

    Split const* begin() const { return all.data(); }

    Split const* end() const { return all.data() + count; }

private:
    template <typename IsBehind>
    void Insert(Split split, IsBehind const& isBehind) {
        std::size_t at = count++;
        for (; at > 0 && isBehind(all[at - 1]); --at)
            all[at] = all[at - 1];
        all[at] = split;
    }

    std::array<Split, 2 * StepCount + 1> all; // two for each step, one for a heading
    std::size_t count = 0;
};

// Takes the filtered lines, each an indentation and a stretch of the page, and drops the blank ones.
class FilledLines {
public:
    FilledLines(TextView wholePage, std::vector<std::size_t>* lineNumbers)
        : page(wholePage),
          sourceLines(lineNumbers),
          text(page.size() + page.size() / 8 + slack, CodeUnit{0}) {}

    void Add(TextView indent, Stretch line, std::size_t sourceLine) {
        TextView const units = page.substr(line.begin, line.end - line.begin);
        if (std::all_of(units.begin(), units.end(), IsWhiteSpace))
            return;
        CodeUnit* const start = RoomFor(indent.size() + units.size());
        EndLine(CopyFromPage(line, Copy(indent, start)), sourceLine);
    }

    void AddBreak(std::size_t sourceLine) {
        EndLine(Copy(normalBreak, RoomFor(normalBreak.size())), sourceLine);
    }

    String Take() {
        text.resize(used);
        return String(std::move(text));
    }

private:
    // Pieces are copied in steps of so many units, past their end, which later pieces then cover.
    static constexpr std::size_t step = 8;

    // Room for such a step and for a line break.
    static constexpr std::size_t slack = step + 2;

    // Where the text goes on, in front of so much room.
    CodeUnit* RoomFor(std::size_t units) {
        if (text.size() - used < units + slack)
            text.resize(text.size() + std::max(text.size() / 2, units + slack));
        return text.data() + used;
    }

    // These give the place behind what they have written.

    static CodeUnit* Copy(TextView units, CodeUnit* to) {
        for (CodeUnit const unit : units)
            *to++ = unit;
        return to;
    }

    CodeUnit* CopyFromPage(Stretch line, CodeUnit* to) const {
        CodeUnit const* from = page.data() + line.begin;
        CodeUnit const* const end = page.data() + line.end;
        if (page.size() - line.end < step)
            return std::copy(from, end, to);
        CodeUnit* const toEnd = to + (end - from);
        for (; from < end; from += step, to += step)
            std::copy_n(from, step, to);
        return toEnd;
    }

    void EndLine(CodeUnit* to, std::size_t sourceLine) {
        used = static_cast<std::size_t>(Copy(lineBreak, to) - text.data());
        if (sourceLines)
            sourceLines->push_back(sourceLine);
    }

    TextView page;
    std::vector<std::size_t>* sourceLines;
    TextBuffer const lineBreak{(String() << newline).View()};
    TextBuffer text;
    std::size_t used = 0;
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
        : page(wholePage), out(wholePage, sourceLines) {}

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
        splits.Clear();
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
        splits.InsertInFront({tag.end, !indent.empty()});
    }

    // The rest of the line stays behind this tag, and white space before it is repeated by the indentation.
    void SplitBeforeFormatable(Stretch line) {
        std::size_t const begin = StepBackOverWhitespace(line, marks.first[Formatable]);
        SplitBefore(begin, !indent.empty());
    }

    void SplitBefore(std::size_t place, bool isIndented) { splits.InsertBehind({place, isIndented}); }

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
        TextView indentHere;
        auto const* split = splits.begin();
        auto const writeTo = [&](std::size_t end) {
            for (; split != splits.end() && split->place <= end; ++split) {
                out.Add(indentHere, {line.begin, split->place}, lineNumber);
                indentHere = split->isIndented ? TextView(indent) : TextView();
                line.begin = split->place;
            }
            out.Add(indentHere, {line.begin, end}, lineNumber);
            indentHere = {};
        };
        for (Stretch const& lineBreak : marks.breaks) {
            writeTo(lineBreak.begin);
            out.AddBreak(lineNumber);
            line.begin = lineBreak.end;
        }
        writeTo(line.end);
    }

    TextView page;
    PlacesOf<u'<', u'\n', u'\r'> places{page};
    FilledLines out;
    std::size_t lineNumber = 0;
    // Of the line at hand; they keep their storage from line to line.
    LineMarks marks;
    Splits splits;
    TextBuffer indent;
};

} // namespace

String FilteredPage(TextView page, std::vector<std::size_t>* sourceLines) {
    return PageFilter(page, sourceLines).Filter();
}

} // namespace QMT
