// The page jobs in their plainest form, rule by rule and without a thought for time: what the library's own
// are compared with.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "qmt/general/containers.h"
#include "qmt/general/files.h"
#include "qmt/general/string.h"

namespace QMT {

class ReferenceParser {
public:
    explicit ReferenceParser(String const& page) : html(page) { PreFilter(); }

    String html;
    std::vector<String> found; // by Extract, in the page's order, without those that were known

    void Extract(VArray<String, String>& into, bool parseHead) {
        strings = &into;
        found.clear();
        ParseOut(parseHead);
        strings = nullptr;
    }

    void Substitute(Map<String, String> const& table, bool parseHead) {
        natives = &table;
        html = ParseOut(parseHead);
    }

    void Format(int width) {
        String output;
        Row const lines = Split(html, true);
        for (std::size_t i = 0, depth = 0; i < lines.size(); ++i) {
            output << lines[i] << newline;
            if (depth == 0) {
                depth = Has(lines[i], u"<div id=\"formatable\"") ? 1 : 0;
                continue;
            }
            if (Has(lines[i], u"<p>")) {
                String paragraph;
                for (++i; i < lines.size() && !Has(lines[i], u"</p>") && !Has(lines[i], u"<span"); ++i)
                    paragraph << lines[i] << newline;
                if (i == lines.size())
                    break;
                FormatParagraph(Split(paragraph, false), width, output);
                output << lines[i] << newline;
            }
            if (Has(lines[i], u"<div"))
                ++depth;
            else if (Has(lines[i], u"</div>"))
                --depth;
        }
        html = output;
    }

    using Row = std::vector<String>;

    // The lines of the text, or its words.
    static Row Split(String const& text, bool atLineEnds) {
        Row parts;
        ParsableText elements(text);
        elements.splitOnLineEnds = atLineEnds;
        for (String part; elements.GetNextElem(&part, 0);)
            parts.push_back(part);
        return parts;
    }

private:
    static int Len(String const& text) { return static_cast<int>(text.Len()); }

    static String Cut(String const& text, int begin, int end) {
        return text.Mid(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    }

    static int Find(String const& text, String const& part, int from = 0) {
        return from < 0 ? -1 : text.Find(part, static_cast<std::size_t>(from));
    }

    static bool Has(String const& text, String const& part) { return Find(text, part) >= 0; }

    static bool HasOneOf(String const& text, Row const& parts) {
        return std::ranges::any_of(parts, [&](String const& part) { return Has(text, part); });
    }

    static void StepBack(String const& text, int& at, String& indent) {
        bool const isSet = !indent.IsEmpty();
        for (; !isSet && at > 0 && (text[at - 1] == u' ' || text[at - 1] == u'\t'); --at)
            indent << text[at - 1];
    }

    // Puts the pieces on both sides of [begin, end) apart, with middle between them.
    static void Rewrite(String& line, int begin, String const& middle, int end) {
        line = Cut(line, 0, begin) + middle + Cut(line, end, Len(line));
    }

    static void SplitOff(String& line, String& indent, String const& marker) {
        int begin = Find(line, marker);
        int const end = Find(line, u">", begin) + 1;
        if (end == 0)
            return;
        String const front = lineEnd + (marker == u"</td>" ? String() : indent);
        StepBack(line, begin, indent);
        Rewrite(line, begin, front + Cut(line, begin, end) + lineEnd + indent, end);
    }

    void PreFilter() {
        for (String line : Split(std::exchange(html, {}), true)) {
            String indent;
            SplitOff(line, indent, u"<p");
            SplitOff(line, indent, u"<td");
            if (int at = Find(line, u"<div id=\"formatable\""); at >= 0) {
                StepBack(line, at, indent);
                Rewrite(line, at, lineEnd + indent, at);
            } else {
                SplitOff(line, indent, u"<div");
            }
            for (auto const tag : {u"</p>", u"</div>", u"</form>", u"</td>"})
                SplitOff(line, indent, tag);
            for (String const tag : {u"<br/>", u"<br />"})
                for (int at = 0; (at = Find(line, tag, at)) >= 0; at += 7 + 2)
                    Rewrite(line, at, lineEnd + u" <br />" + lineEnd, at + Len(tag));
            if (int const at = Find(line, u"<h"); at >= 0 && Find(line, u"<html") != at)
                Rewrite(line, at, lineEnd, at);
            for (String const& part : Split(line, true))
                if (!String(part).TrimAll().IsEmpty())
                    html << part << newline;
        }
    }

    void CollectOrSubstitute(String const& text, String const& line, String& output) {
        if (!strings) {
            int const index = text.IsEmpty() ? -1 : natives->Find(text);
            int const place = index < 0 ? -1 : Find(line, text);
            String result = line;
            if (place >= 0)
                Rewrite(result, place, natives->Value(static_cast<std::size_t>(index)), place + Len(text));
            output << result << newline;
        } else if (!text.IsEmpty() && strings->Find(text) == -1) {
            strings->AddWithSort(text);
            found.push_back(text);
        }
    }

    void Flush(String& paragraph, String& output, bool isEnd) {
        paragraph.TrimAll();
        if (paragraph == u"&nbsp;")
            output << paragraph << newline;
        else if (isEnd || !paragraph.IsEmpty())
            CollectOrSubstitute(paragraph, paragraph, output);
        paragraph.SetEmpty();
    }

    // The text behind the marker up to the end marker; false without either.
    static bool CutBehind(String const& line, String const& marker, String const& endMarker, String& text) {
        int const at = Find(line, marker);
        int const begin = at < 0 ? -1 : at + Len(marker);
        int const end = Find(line, endMarker, begin);
        text = end < 0 ? String() : Cut(line, begin, end);
        return end >= 0;
    }

    void ReadField(String const& line, String& output) {
        String result = line, text;
        bool const isText = !HasOneOf(line, {u"type=\"radio\"", u"type=\"checkbox\"", u"type=\"hidden\""});
        for (auto const marker : {u"value=\"", u"placeholder=\""})
            if (isText && CutBehind(line, marker, u"\"", text) && (*marker == u'p' || !Has(text, u".htm"))) {
                String replaced;
                CollectOrSubstitute(text.TrimAll(), result, replaced);
                result = replaced;
            }
        output << result << newline;
    }

    String ParseOut(bool inHead) {
        String output, paragraph, text;
        bool inParagraph = false;
        for (String const& line : Split(html, true)) {
            int at = 0, begin = -1, end = -1; // the places in front of and behind a text
            if (inHead) {
                bool const isDescription = Has(line, u"<meta name=\"description\" content=\"");
                if (isDescription ? CutBehind(line, u"<meta name=\"description\" content=\"", u"\"", text)
                                  : CutBehind(line, u"<title>", u"</title>", text))
                    CollectOrSubstitute(text, line, output);
                else
                    output << line << newline;
                inHead = !Has(line, u"</head>");
                continue;
            }
            if ((at = Find(line, u"<label")) >= 0) {
                begin = Find(line, u">", at);
                end = Find(line, u"<", begin < 0 ? -1 : begin + 1);
            } else if ((at = Find(line, u"<h")) >= 0) {
                end = Find(line, u"</h", at);
                begin = end < 0 ? -1 : Cut(line, 0, end).FindLast(u">");
            } else if ((at = Find(line, u"<a href=\"")) >= 0) {
                begin = Find(line, u">", at);
                end = Find(line, u"</a", begin);
                end = end < 0 ? Len(line) : end;
            } else if (Has(line, u"value=\"") || Has(line, u"placeholder=\"")) {
                Flush(paragraph, output, false);
                ReadField(line, output);
                continue;
            } else if (Has(line, u"<p")) {
                inParagraph = true;
            } else if (Has(line, u"</p>")) {
                Flush(paragraph, output, true);
                inParagraph = false;
            } else if (inParagraph && !HasOneOf(line, {u"<select", u"</select>", u"<input", u"<form",
                                                       u"</form>", u"&nbsp;", u"<br", u"type=\"hidden\""})) {
                paragraph << line << newline;
                continue;
            } else {
                Flush(paragraph, output, false);
            }
            bool const isLabel = Has(line, u"<label");
            if (begin >= 0 && end >= 0) {
                if (isLabel)
                    Flush(paragraph, output, false);
                text = Cut(line, begin + 1, end);
                CollectOrSubstitute(text.TrimAll(), line, output);
            } else {
                (isLabel && begin >= 0 && inParagraph ? paragraph : output) << line << newline;
            }
        }
        return output;
    }

    // Breaks the words into lines of about the same length, moves strays at full stops, and evens out twice.
    static void FormatRow(Row const& row, int width, int& blankRun, String& output) {
        auto const stops = [&](std::size_t word) { return row[word].Right(1) == u"."; };
        auto const total = [&](std::size_t begin, std::size_t end) { // one blank behind each word
            int sum = 0;
            for (; begin < end; ++begin)
                sum += Len(row[begin]) + 1;
            return sum;
        };
        int const whole = total(0, row.size());
        int target = std::max(whole, width), column = 0;
        for (int n = 1; target > width; ++n)
            target = whole / n;
        std::vector<std::size_t> begins{0};
        for (std::size_t word = 0; word < row.size(); column += Len(row[word++]) + 1)
            if (column + Len(row[word]) > target)
                begins.push_back(word), column = 0;
        begins.push_back(row.size());
        for (int pass = 0; pass < 3; ++pass)
            for (std::size_t line = 1; line + 1 < begins.size(); ++line) {
                std::size_t const upper = begins[line - 1], end = begins[line + 1];
                std::size_t& lower = begins[line];
                if (pass == 0) {
                    if (lower - upper >= 2 && stops(lower - 2))
                        --lower;
                    if (lower < end && stops(lower))
                        ++lower;
                    continue;
                }
                auto const surplus = [&] { return total(upper, lower) - total(lower, end); };
                bool const isDown = surplus() > 0;
                bool isDone = lower == upper || lower == end || stops(lower - 1);
                while (!isDone && (isDown ? surplus() > 0 : surplus() < 0)) {
                    if ((!isDown && end - lower >= 2 && stops(lower + 1)) ||
                        std::abs(surplus()) < Len(row[isDown ? lower - 1 : lower]) + 1)
                        break;
                    lower += isDown ? std::size_t{0} - 1 : 1;
                    isDone = isDown && stops(lower);
                }
            }
        for (std::size_t line = 0; line + 1 < begins.size(); ++line) {
            bool const isEmpty = begins[line] == begins[line + 1];
            for (std::size_t word = begins[line]; word < begins[line + 1]; ++word)
                output << row[word] << u" ";
            output << (!isEmpty ? u"<br />" : blankRun < 2 ? u" <br />" : u"") << newline;
            blankRun = isEmpty ? blankRun + 1 : 1;
        }
    }

    static void FormatParagraph(Row const& words, int width, String& output) {
        int blankRun = 0;
        Row row;
        for (std::size_t i = 0; i < words.size(); ++i) {
            bool const isBreak = words[i] == u"<br";
            if (!isBreak)
                row.push_back(words[i]);
            if (isBreak && row.empty() && blankRun++ < 2)
                output << u" <br />" << newline;
            i += isBreak ? 1 : 0;
            if (!row.empty() && (isBreak || i + 1 >= words.size()))
                FormatRow(std::exchange(row, {}), width, blankRun, output);
        }
    }

    static inline String const lineEnd = String() << newline;
    VArray<String, String>* strings = nullptr;
    Map<String, String> const* natives = nullptr;
};

} // namespace QMT
