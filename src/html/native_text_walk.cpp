#include "html/native_text_walk.h"

namespace QMT {

namespace {

constexpr TextView linkMarker = u"<a href=\""_view;
constexpr TextView valueMarker = u"value=\""_view;
constexpr TextView placeholderMarker = u"placeholder=\""_view;
constexpr TextView hiddenMarker = u"type=\"hidden\""_view;
constexpr TextView radioMarker = u"type=\"radio\""_view;
constexpr TextView checkboxMarker = u"type=\"checkbox\""_view;
constexpr TextView descriptionMarker = u"<meta name=\"description\" content=\""_view;
constexpr TextView titleMarker = u"<title>"_view;

// A line of the page, in which markers that begin with "<" are looked for from its first tag on only.
struct PageLine {
    explicit PageLine(TextView line) : text(line), firstTag(FindAnyOf<u'<'>(line, 0)) {}

    std::size_t FindTag(TextView marker) const { return text.find(marker, firstTag); }

    bool HoldsTag(TextView marker) const { return FindTag(marker) != nowhere; }

    TextView text;
    std::size_t firstTag;
};

// The text between the places, the second of which may lie beyond the end.
TextView Between(TextView line, std::size_t begin, std::size_t end) {
    return line.substr(begin, end - begin);
}

// What stands behind the marker at the place up to the closing text; nothing when that is missing.
std::optional<TextView> TextBehind(TextView line, std::size_t place, TextView marker, TextView closing) {
    std::size_t const begin = place + marker.size();
    std::size_t const end = line.find(closing, begin);
    return end == nowhere ? std::nullopt : std::optional(Between(line, begin, end));
}

std::optional<TextView> Attribute(TextView line, TextView marker) {
    std::size_t const place = line.find(marker);
    return place == nowhere ? std::nullopt : TextBehind(line, place, marker, u"\""_view);
}

// One walk over one page. Body lines are told apart by the first rule that fits, in a fixed order.
class NativeTextWalk {
public:
    NativeTextWalk(TextView page, NativeTextSink& target) : lines(page), sink(target) {}

    void Walk(bool inHead) {
        for (TextView line; lines.Next(line);) {
            if (!inHead) {
                ReadBodyLine(PageLine(line));
                continue;
            }
            ReadHeadLine(line);
            inHead = !Holds(line, u"</head>"_view);
        }
        if (paragraphNumber != 0) {
            sink.Lost(paragraphNumber);
        }
    }

private:
    void ReadHeadLine(TextView line) {
        std::optional<TextView> text;
        if (std::size_t const place = line.find(descriptionMarker); place != nowhere) {
            text = TextBehind(line, place, descriptionMarker, u"\""_view);
        } else if (std::size_t const title = line.find(titleMarker); title != nowhere) {
            text = TextBehind(line, title, titleMarker, u"</title>"_view);
        }
        if (text) {
            sink.Text(*text, line, lines.Number());
        } else {
            sink.Line(line);
        }
    }

    void ReadBodyLine(PageLine const& line) {
        if (std::size_t const label = line.FindTag(u"<label"_view); label != nowhere) {
            ReadLabel(line.text, label);
        } else if (std::size_t const heading = line.FindTag(u"<h"_view); heading != nowhere) {
            ReadHeading(line.text, heading);
        } else if (std::size_t const link = line.FindTag(linkMarker); link != nowhere) {
            ReadLink(line.text, link);
        } else if (Holds(line.text, valueMarker) || Holds(line.text, placeholderMarker)) {
            ReadField(line.text);
        } else if (line.HoldsTag(paragraphMarker)) {
            inParagraph = true;
            sink.Line(line.text);
        } else if (line.HoldsTag(paragraphEnd)) {
            FlushParagraph();
            inParagraph = false;
            sink.Line(line.text);
        } else {
            ReadOtherLine(line);
        }
    }

    void ReadLabel(TextView line, std::size_t label) {
        std::size_t const open = line.find(u'>', label);
        if (open == nowhere) {
            sink.Line(line);
            return;
        }
        std::size_t const close = line.find(u'<', open + 1);
        if (close == nowhere) {
            HoldOrPass(line);
            return;
        }
        InterruptParagraph();
        EmitText(Between(line, open + 1, close), line);
    }

    void ReadHeading(TextView line, std::size_t heading) {
        std::size_t const close = line.find(u"</h"_view, heading);
        std::size_t const open = close == nowhere ? nowhere : line.rfind(u'>', close - 1);
        if (open == nowhere) {
            sink.Line(line);
        } else {
            EmitText(Between(line, open + 1, close), line);
        }
    }

    void ReadLink(TextView line, std::size_t link) {
        std::size_t const open = line.find(u'>', link);
        if (open == nowhere) {
            sink.Line(line);
        } else {
            EmitText(Between(line, open + 1, line.find(u"</a"_view, open + 1)), line);
        }
    }

    void ReadField(TextView line) {
        InterruptParagraph();
        if (Holds(line, radioMarker) || Holds(line, checkboxMarker) || Holds(line, hiddenMarker)) {
            sink.Line(line);
            return;
        }
        std::optional<TextView> value = Attribute(line, valueMarker);
        if (value && Holds(*value, u".htm"_view)) {
            value.reset();
        }
        std::optional<TextView> placeholder = Attribute(line, placeholderMarker);
        for (std::optional<TextView>* text : {&value, &placeholder}) {
            if (*text) {
                **text = Trimmed(**text);
            }
        }
        sink.Field(line, value, placeholder, lines.Number());
    }

    void ReadOtherLine(PageLine const& line) {
        if (inParagraph && Interrupts(line)) {
            InterruptParagraph();
            sink.Line(line.text);
        } else {
            HoldOrPass(line.text);
        }
    }

    static bool Interrupts(PageLine const& line) {
        return line.HoldsTag(u"<select"_view) || line.HoldsTag(u"</select>"_view) ||
               line.HoldsTag(u"<input"_view) || line.HoldsTag(u"<form"_view) ||
               line.HoldsTag(u"</form>"_view) || line.HoldsTag(u"<br"_view) ||
               Holds(line.text, u"&nbsp;"_view) || Holds(line.text, hiddenMarker);
    }

    void HoldOrPass(TextView line) {
        if (!inParagraph) {
            sink.Line(line);
            return;
        }
        if (paragraphNumber == 0 && !Trimmed(line).empty()) {
            paragraphNumber = lines.Number();
        }
        paragraph += line;
        paragraph += lineBreak;
    }

    // The paragraph goes on behind the interruption, with a text of its own.
    void InterruptParagraph() {
        if (paragraphNumber != 0) {
            FlushParagraph();
        }
        paragraph.clear();
    }

    void FlushParagraph() {
        TextView const text = Trimmed(paragraph);
        sink.Text(text, text, paragraphNumber);
        paragraph.clear();
        paragraphNumber = 0;
    }

    void EmitText(TextView text, TextView line) { sink.Text(Trimmed(text), line, lines.Number()); }

    PageLines lines;
    NativeTextSink& sink;
    TextBuffer const lineBreak{(String() << newline).View()};
    TextBuffer paragraph;            // the held lines, each with a line break
    std::size_t paragraphNumber = 0; // of the first held line that is not blank, 0 when there is none
    bool inParagraph = false;
};

} // namespace

void WalkNativeTexts(TextView page, bool parseHead, NativeTextSink& sink) {
    NativeTextWalk(page, sink).Walk(parseHead);
}

} // namespace QMT
