// The line loop over a page that finds its native strings.
#pragma once

#include <cstddef>
#include <optional>

#include "html/page_text.h"

namespace QMT {

// Takes what the walk over a page finds. The views are good during the call only.
//
// Each line of the page comes by once: unchanged through Line, with its text through Text, or as a form field
// through Field. The lines of a paragraph come together, as one text with line breaks inside, and that text
// stands for the line it was found in.
class NativeTextSink {
public:
    virtual ~NativeTextSink() = default;

    // A line without a native string.
    virtual void Line(TextView) {}

    // A text, which may be empty, in its line. The number is that of the line where the text begins, from 1;
    // without a meaning when the text is empty.
    virtual void Text(TextView text, TextView line, std::size_t lineNumber) = 0;

    // A line with up to two texts, of which the value comes first.
    virtual void Field(TextView line, std::optional<TextView> value, std::optional<TextView> placeholder,
                       std::size_t lineNumber) {
        for (std::optional<TextView> const& text : {value, placeholder}) {
            if (text) {
                Text(*text, line, lineNumber);
            }
        }
    }

    // The page ends within a paragraph, whose held text begins in that line.
    virtual void Lost(std::size_t) {}
};

// Walks a page in the layout of FilteredPage. With parseHead the lines up to the one with "</head>" are head.
void WalkNativeTexts(TextView page, bool parseHead, NativeTextSink& sink);

} // namespace QMT
