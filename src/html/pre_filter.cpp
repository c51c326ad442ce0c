#include "html/pre_filter.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace QMT {

namespace {

// The tags that are moved, in the order in which a line is split at them. The order shows in the result: the
// first tag with white space before it settles the indentation for those behind it in this list.
enum Step { Paragraph, Cell, Formatable, Division, ParagraphEnd, DivisionEnd, FormEnd, CellEnd, StepCount };

// Also moved, but without what stands behind it.
constexpr int heading = StepCount;
constexpr int markCount = heading + 1;

constexpr TextView formEnd = u"</form>"_view;
constexpr TextView cellEnd = u"</td>"_view;

// A stretch of the page from its first unit to the place behind its last.
struct Stretch {
    std::size_t begin;
    std::size_t end;
};

// Where in the page the markers stand that a line holds: the first of each, and all line breaks.
class LineMarks {
public:
    void Clear() {
        present = 0;
        breaks.clear();
    }

    bool IsEmpty() const { return present == 0 && breaks.empty(); }

    bool Has(int mark) const { return (present >> mark & 1U) != 0; }

    // Of a mark that there is.
    std::size_t First(int mark) const { return first[static_cast<std::size_t>(mark)]; }

    std::vector<Stretch> const& Breaks() const { return breaks; }

    // Notes what begins at the place, where a "<" stands.
    void Note(TextView page, std::size_t place) {
        TextView const rest = page.substr(place);
        switch (rest.size() > 1 ? rest[1] : CodeUnit{0}) {
        case u'p':
            NoteIf(true, Paragraph, place);
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
            NoteIf(true, heading, place);
            break;
        default:
            break;
        }
    }

private:
    void NoteIf(bool isThere, int mark, std::size_t place) {
        if (isThere && !Has(mark)) {
            present |= 1U << mark;
            first[static_cast<std::size_t>(mark)] = place;
        }
    }

    void NoteClosingTag(TextView rest, std::size_t place) {
        switch (rest.size() > 2 ? rest[2] : CodeUnit{0}) {
        case u'p':
            NoteIf(BeginsWith<u"</p>">(rest), ParagraphEnd, place);
            break;
        case u'd':
            NoteIf(BeginsWith<u"</div>">(rest), DivisionEnd, place);
            break;
        case u'f':
            NoteIf(BeginsWith<u"</form>">(rest), FormEnd, place);
            break;
        case u't':
            NoteIf(BeginsWith<u"</td>">(rest), CellEnd, place);
            break;
        default:
            break;
        }
    }

    void NoteBreak(TextView rest, std::size_t place) {
        if (BeginsWith<u"<br/>">(rest)) {
            breaks.push_back({place, place + std::size("<br/>") - 1});
        } else if (BeginsWith<u"<br />">(rest)) {
            breaks.push_back({place, place + normalBreak.size() - 1});
        }
    }

    std::array<std::size_t, markCount> first; // of those that are present
    std::uint32_t present = 0;                // a bit for each mark
    std::vector<Stretch> breaks;
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

// Units are copied in steps of so many, past their end where they can be read and written there, since a copy
// of exactly so many as there are takes longer.
constexpr std::size_t copyStep = 8;

// Gives the place behind the units that count.
CodeUnit* CopyInSteps(CodeUnit const* from, std::size_t count, CodeUnit* to) {
    CodeUnit* const end = to + count;
    for (; to < end; from += copyStep, to += copyStep)
        std::copy_n(from, copyStep, to);
    return end;
}

// The white space in front of a tag, its last unit first.
class Indentation {
public:
    void Clear() { count = 0; }

    bool IsEmpty() const { return count == 0; }

    std::size_t Size() const { return count; }

    void Append(CodeUnit unit) {
        if (count == units.size())
            units.resize(2 * units.size());
        units[count++] = unit;
    }

    CodeUnit* CopyTo(CodeUnit* to) const { return CopyInSteps(units.data(), count, to); }

private:
    std::vector<CodeUnit> units = std::vector<CodeUnit>(4 * copyStep); // whole steps
    std::size_t count = 0;
};

// Takes the filtered lines, each an indentation and a stretch of the page, and drops the blank ones.
class FilledLines {
public:
    FilledLines(TextView wholePage, std::vector<std::size_t>* lineNumbers)
        : page(wholePage),
          sourceLines(lineNumbers),
          text(page.size() + page.size() / 8 + slack, CodeUnit{0}) {}

    // `indent` may be null.
    void Add(Indentation const* indent, Stretch line, std::size_t sourceLine) {
        if (!IsBlank(line))
            AddFilled(indent, line, sourceLine);
    }

    void AddBreak(std::size_t sourceLine) {
        CodeUnit* const to = RoomFor(normalBreak.size());
        EndLine(std::copy(normalBreak.begin(), normalBreak.end(), to), sourceLine);
    }

    String Take() {
        text.resize(used);
        return String(std::move(text));
    }

private:
    // Room for a step of a copy and for a line break.
    static constexpr std::size_t slack = copyStep + 2;

    bool IsBlank(Stretch line) const {
        while (line.begin != line.end && IsWhiteSpace(page[line.begin]))
            ++line.begin;
        return line.begin == line.end;
    }

    void AddFilled(Indentation const* indent, Stretch line, std::size_t sourceLine) {
        CodeUnit* to = RoomFor((indent ? indent->Size() : 0) + line.end - line.begin);
        if (indent)
            to = indent->CopyTo(to);
        EndLine(CopyFromPage(line, to), sourceLine);
    }

    // Where the text goes on, in front of so much room.
    CodeUnit* RoomFor(std::size_t units) {
        if (text.size() - used < units + slack)
            text.resize(text.size() + std::max(text.size() / 2, units + slack));
        return text.data() + used;
    }

    // Gives the place behind what it has written.
    CodeUnit* CopyFromPage(Stretch line, CodeUnit* to) const {
        if (page.size() - line.end < copyStep)
            return std::copy(page.data() + line.begin, page.data() + line.end, to);
        return CopyInSteps(page.data() + line.begin, line.end - line.begin, to);
    }

    void EndLine(CodeUnit* to, std::size_t sourceLine) {
        to[0] = lineBreak.front();
        to[1] = lineBreak.back();
        used = static_cast<std::size_t>(to - text.data()) + lineBreak.size();
        if (sourceLines)
            sourceLines->push_back(sourceLine);
    }

    TextView page;
    std::vector<std::size_t>* sourceLines;
    TextBuffer const lineBreak{(String() << newline).View()}; // one or two units
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
            if (marks.IsEmpty()) {
                out.Add(nullptr, {begin, end}, lineNumber);
            } else {
                FindSplits({begin, end});
                WritePieces({begin, end});
            }
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
        indent.Clear();
        SplitAtOpeningTag(line, Paragraph);
        SplitAtOpeningTag(line, Cell);
        if (marks.Has(Formatable)) {
            SplitBeforeFormatable(line);
        } else {
            SplitAtOpeningTag(line, Division);
        }
        SplitAtClosingTag(line, ParagraphEnd, paragraphEnd);
        SplitAtClosingTag(line, DivisionEnd, divisionEnd);
        SplitAtClosingTag(line, FormEnd, formEnd);
        SplitAtClosingTag(line, CellEnd, cellEnd);
        if (marks.Has(heading) && !BeginsWith<u"<html">(page.substr(marks.First(heading)))) {
            SplitBefore(marks.First(heading), false);
        }
    }

    void SplitAtOpeningTag(Stretch line, Step step) {
        if (!marks.Has(step)) {
            return;
        }
        std::size_t const begin = marks.First(step);
        std::size_t const close = page.substr(0, line.end).find(u'>', begin);
        if (close != nowhere) {
            SplitOff(line, {begin, close + 1}, true);
        }
    }

    void SplitAtClosingTag(Stretch line, Step step, TextView tag) {
        if (marks.Has(step)) {
            SplitOff(line, {marks.First(step), marks.First(step) + tag.size()}, step != CellEnd);
        }
    }

    // Puts the tag on a line of its own.
    void SplitOff(Stretch line, Stretch tag, bool mayBeIndented) {
        bool const wasSettled = !indent.IsEmpty();
        SplitBefore(StepBackOverWhitespace(line, tag.begin), wasSettled && mayBeIndented);
        // What stands behind the tag goes in front of all that earlier steps have inserted there.
        splits.InsertInFront({tag.end, !indent.IsEmpty()});
    }

    // The rest of the line stays behind this tag, and white space before it is repeated by the indentation.
    void SplitBeforeFormatable(Stretch line) {
        std::size_t const begin = StepBackOverWhitespace(line, marks.First(Formatable));
        SplitBefore(begin, !indent.IsEmpty());
    }

    void SplitBefore(std::size_t place, bool isIndented) { splits.InsertBehind({place, isIndented}); }

    // Where a tag begins with the white space before it, which becomes the indentation, its last unit first.
    // Once there is an indentation, tags begin where they stand.
    std::size_t StepBackOverWhitespace(Stretch line, std::size_t place) {
        if (!indent.IsEmpty()) {
            return place;
        }
        for (; place > line.begin && (page[place - 1] == u' ' || page[place - 1] == u'\t'); --place) {
            indent.Append(page[place - 1]);
        }
        return place;
    }

    void WritePieces(Stretch line) {
        Indentation const* indentHere = nullptr;
        auto const* split = splits.begin();
        auto const writeTo = [&](std::size_t end) {
            for (; split != splits.end() && split->place <= end; ++split) {
                out.Add(indentHere, {line.begin, split->place}, lineNumber);
                indentHere = split->isIndented ? &indent : nullptr;
                line.begin = split->place;
            }
            out.Add(indentHere, {line.begin, end}, lineNumber);
            indentHere = nullptr;
        };
        for (Stretch const& lineBreak : marks.Breaks()) {
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
    Indentation indent;
};

} // namespace

String FilteredPage(TextView page, std::vector<std::size_t>* sourceLines) {
    return PageFilter(page, sourceLines).Filter();
}

} // namespace QMT
