#include "report.h"

#include <algorithm>
#include <string>

#include "qmt/html/html_text.h"

namespace Translator {

namespace {

using QMT::newline;
using QMT::String;

String LineBreak() {
    String text;
    text << newline;
    return text;
}

// On one line, in double quotes.
String Quoted(String text) {
    QMT::HtmlReplace(u"\\", u"\\\\", text);
    QMT::HtmlReplace(u"\"", u"\\\"", text);
    QMT::HtmlReplace(u"\t", u"\\t", text);
    QMT::HtmlReplace(LineBreak(), u"\\n", text);
    return u"\"" + text + u"\"";
}

// For a terminal, on which a page's control characters must not act.
String Shown(String const& text) {
    std::basic_string<QMT::CodeUnit> units(Quoted(text).View());
    auto const isControl = [](QMT::CodeUnit unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); };
    std::ranges::replace_if(units, isControl, QMT::CodeUnit{u'\uFFFD'});
    return String(units);
}

// As the number that goes into text whole on every system.
unsigned long long Whole(std::size_t count) {
    return count;
}

} // namespace

String MakePoFile(QMT::NativeCoverage const& texts, String const& page) {
    String name = page;
    QMT::HtmlReplace(u"\n", u" ", name); // which would end the comment
    String file = u"msgid \"\"";
    file << newline << u"msgstr \"Content-Type: text/plain; charset=UTF-8\\n\"" << newline;
    for (auto const& [text, lines] : texts.missing) {
        file << newline << u"#:";
        for (std::size_t const line : lines) {
            file << u" " << name << u":" << Whole(line);
        }
        file << newline << u"msgid " << Quoted(text) << newline << u"msgstr \"\"" << newline;
    }
    return file;
}

String MakeTableFile(QMT::NativeCoverage const& texts, std::size_t& leftOut) {
    String const lineBreak = LineBreak();
    String file;
    for (auto const& [text, lines] : texts.missing) {
        if (text.Find(lineBreak) != -1 || text.Find(u"\t") != -1) {
            ++leftOut;
        } else {
            file << text << u"\t" << newline;
        }
    }
    return file;
}

String DescribeCoverage(QMT::NativeCoverage const& coverage, std::size_t textCount) {
    std::size_t const missing = coverage.missing.size();
    String told;
    told << u"translated: " << Whole(textCount - missing) << u" of " << Whole(textCount) << u" texts"
         << newline;
    for (auto const& [text, lines] : coverage.missing) {
        told << u"missing:    " << Shown(text);
        for (std::size_t const line : lines) {
            told << (line == lines.front() ? u", line " : u", ") << Whole(line);
        }
        told << newline;
    }
    for (String const& key : coverage.unused) {
        told << u"unused:     " << Shown(key) << newline;
    }
    if (coverage.lostFrom != 0) {
        told << u"lost:       the text from line " << Whole(coverage.lostFrom)
             << u" on, whose paragraph is never closed" << newline;
    }
    return told;
}

} // namespace Translator
