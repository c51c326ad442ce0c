#include "qmt/html/html_text.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "html/page_text.h"

namespace QMT {

namespace {

// The units of a text with every occurrence of one replaced by another.
String WithReplaced(String const& text, char16_t from, char16_t to) {
    TextBuffer units(text.View());
    std::ranges::replace(units, CodeUnit{from}, CodeUnit{to});
    return String(std::move(units));
}

// The value of the escape at the place of its "%"; the second digit may be missing.
CodeUnit EscapedUnit(TextView text, std::size_t place) {
    CodeUnit const second = place + 2 < text.size() ? text[place + 2] : CodeUnit{0};
    return static_cast<CodeUnit>(16 * HexVal(text[place + 1]) + HexVal(second));
}

String DecodedLowBytes(TextView text) {
    std::string bytes(text.size(), '\0');
    std::ranges::transform(text, bytes.begin(), [](CodeUnit unit) { return static_cast<char>(unit & 0xFF); });
    return DecodeFromUTF8(bytes.c_str(), false);
}

} // namespace

void UrlDecode(String& text) {
    text = HtmlDecode(WithReplaced(text, u'+', u' '));
}

String HtmlDecode(String text) {
    constexpr std::size_t escapeLength = 3;
    TextView const source = text.View();
    TextBuffer units;
    std::size_t copied = 0; // how much of the source is dealt with
    std::size_t next = 0;
    bool decoded = false;
    for (std::size_t place; (place = source.find(u'%', next)) < source.size() - 1;) {
        next = place + 1;
        if (source[next] == u'"') {
            continue;
        }
        decoded = true;
        units += source.substr(copied, place - copied);
        next = copied = std::min(place + escapeLength, source.size());
        if (CodeUnit const unit = EscapedUnit(source, place); unit != 0) {
            units += unit;
        } else {
            ++next; // the place of the unit that did not come out is passed all the same
        }
    }
    return decoded ? DecodedLowBytes(units.append(source.substr(copied))) : text;
}

void HtmlReplace(String from, String to, String& text) {
    if (from.IsEmpty()) {
        return;
    }
    TextView const source = text.View();
    TextBuffer replaced;
    std::size_t copied = 0;
    for (std::size_t place; (place = source.find(from.View(), copied)) != nowhere;
         copied = place + from.Len()) {
        replaced.append(source, copied, place - copied).append(to.View());
    }
    if (copied > 0) {
        text = String(std::move(replaced.append(source.substr(copied))));
    }
}

int HexVal(CodeUnit digit) {
    return digit >= u'0' && digit <= u'9' ? digit - u'0' : digit - 55;
}

String UrlSpacesToPlus(String text) {
    return WithReplaced(text, u' ', u'+');
}

String HtmlLinespace() {
    return u"<p>&nbsp;</p>";
}

bool SupportsHtmlTimeSelector() {
    return false;
}

} // namespace QMT
