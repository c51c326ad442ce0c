// The page jobs in their plainest form, rule by rule and without a thought for time: what the library's own
// are compared with.
#pragma once

#include <vector>

#include "qmt/general/containers.h"
#include "qmt/general/files.h"
#include "qmt/general/string.h"

namespace QMT {

class ReferenceParser {
public:
    explicit ReferenceParser(String const& page) : html(page) { PreFilter(); }

    String html;
    std::vector<String>
        found; // by Extract, in the order of the page, without those that strings held already

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

private:
    using Row = std::vector<String>;

    static int Len(String const& text) { return static_cast<int>(text.Len()); }

    static String Cut(String const& text, int begin, int end) {
        return text.Mid(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    }

    static int Find(String const& text, String const& part, int from = 0) {
        return from < 0 ? -1 : text.Find(part, static_cast<std::size_t>(from));
    }

    static bool Has(String const& text, String const& part) { return Find(text, part) >= 0; }

    static Row Split(String const& text, bool atLineEnds) {
        Row parts;
        ParsableText elements(text);
        elements.splitOnLineEnds = atLineEnds;
        for (String part; elements.GetNextElem(&part, 0);)
            parts.push_back(part);
        return parts;
    }

    static void StepBack(String const& text, int& at, String& indent) {
        for (bool const isSet = !indent.IsEmpty(); !isSet && at > 0; --at) {
            if (text[at - 1] != u' ' && text[at - 1] != u'\t')
                return;
            indent << text[at - 1];
        }
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
        String tag;
        tag << newline << (marker == u"</td>" ? String() : indent);
        StepBack(line, begin, indent);
        tag << Cut(line, begin, end) << newline << indent;
        Rewrite(line, begin, tag, end);
    }

    static void SplitBefore(String& line, int at, String const& indent) {
        String inserted;
        inserted << newline << indent;
        Rewrite(line, at, inserted, at);
    }

    void PreFilter() {
        String first;
        for (String line : Split(html, true)) {
            String indent;
            SplitOff(line, indent, u"<p");
            SplitOff(line, indent, u"<td");
            if (int at = Find(line, u"<div id=\"formatable\""); at >= 0) {
                StepBack(line, at, indent);
                SplitBefore(line, at, indent);
            } else {
                SplitOff(line, indent, u"<div");
            }
            for (auto const tag : {u"</p>", u"</div>", u"</form>", u"</td>"})
                SplitOff(line, indent, tag);
            String inserted;
            inserted << newline << u" <br />" << newline;
            for (String const tag : {u"<br/>", u"<br />"})
                for (int at = 0; (at = Find(line, tag, at)) >= 0; at += 7 + 2)
                    Rewrite(line, at, inserted, at + Len(tag));
            if (int const at = Find(line, u"<h"); at >= 0 && Find(line, u"<html") != at)
                SplitBefore(line, at, u"");
            first << line << newline;
        }
        html.SetEmpty();
        for (String const& line : Split(first, true))
            if (!String(line).TrimAll().IsEmpty())
                html << line << newline;
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
        for (auto const type : {u"type=\"radio\"", u"type=\"checkbox\"", u"type=\"hidden\""}) {
            if (Has(line, type)) {
                output << line << newline;
                return;
            }
        }
        for (auto const marker : {u"value=\"", u"placeholder=\""}) {
            if (CutBehind(line, marker, u"\"", text) && (*marker == u'p' || !Has(text, u".htm"))) {
                String replaced;
                CollectOrSubstitute(text.TrimAll(), result, replaced);
                result = replaced;
            }
        }
        output << result << newline;
    }

    static bool Interrupts(String const& line) {
        for (auto const marker : {u"<select", u"</select>", u"<input", u"<form", u"</form>", u"&nbsp;",
                                  u"<br", u"type=\"hidden\""})
            if (Has(line, marker))
                return true;
        return false;
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
            } else if (inParagraph && !Interrupts(line)) {
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

    static bool Stops(String const& word) { return word.Right(1) == u"."; }

    // The sum of the words with one blank behind each.
    static int Total(Row const& row) {
        int total = 0;
        for (String const& word : row)
            total += Len(word) + 1;
        return total;
    }

    static void MoveDown(Row& upper, Row& lower) {
        lower.insert(lower.begin(), upper.back());
        upper.pop_back();
    }

    static void MoveUp(Row& upper, Row& lower) {
        upper.push_back(lower.front());
        lower.erase(lower.begin());
    }

    static std::vector<Row> Fill(Row const& row, int width) {
        int const total = Total(row);
        int target = total <= width ? width : total, column = 0;
        for (int n = 1; target > width; ++n)
            target = total / n;
        std::vector<Row> lines(1);
        for (String const& word : row) {
            if (column + Len(word) > target) {
                lines.emplace_back();
                column = 0;
            }
            lines.back().push_back(word);
            column += Len(word) + 1;
        }
        return lines;
    }

    static void MoveStrays(Row& upper, Row& lower) {
        if (upper.size() >= 2 && Stops(upper[upper.size() - 2]))
            MoveDown(upper, lower);
        if (!lower.empty() && Stops(lower[0]))
            MoveUp(upper, lower);
    }

    static void Balance(Row& upper, Row& lower) {
        if (upper.empty() || lower.empty())
            return;
        bool period = Stops(upper.back());
        bool const isDown = Total(lower) < Total(upper);
        if (!isDown && period)
            return;
        while (isDown ? Total(lower) < Total(upper) && !period : Total(upper) < Total(lower)) {
            if (!isDown && lower.size() >= 2 && Stops(lower[1]))
                return;
            if (std::abs(Total(upper) - Total(lower)) < Len(isDown ? upper.back() : lower.front()) + 1)
                return;
            (isDown ? MoveDown : MoveUp)(upper, lower);
            period = isDown && Stops(lower.front());
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
            if (row.empty() || (!isBreak && i + 1 < words.size()))
                continue;
            std::vector<Row> lines = Fill(row, width);
            for (auto const step : {MoveStrays, Balance, Balance})
                for (std::size_t line = 0; line + 1 < lines.size(); ++line)
                    step(lines[line], lines[line + 1]);
            for (Row const& line : lines) {
                for (String const& word : line)
                    output << word << u" ";
                output << (!line.empty() ? u"<br />" : blankRun < 2 ? u" <br />" : u"") << newline;
                blankRun = line.empty() ? blankRun + 1 : 1;
            }
            row.clear();
        }
    }

    VArray<String, String>* strings = nullptr;
    Map<String, String> const* natives = nullptr;
};

} // namespace QMT
