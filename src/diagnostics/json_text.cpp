#include "diagnostics/json_text.h"

namespace QMT {

namespace {

constexpr CodeUnit replacement = 0xFFFD;

bool IsLeading(CodeUnit unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool IsTrailing(CodeUnit unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// The text has a zero behind it, which is no half of a pair.
bool IsHalf(String const& text, std::size_t index) {
    return (IsLeading(text[index]) && !IsTrailing(text[index + 1])) ||
           (IsTrailing(text[index]) && (index == 0 || !IsLeading(text[index - 1])));
}

} // namespace

void AppendJsonText(String& json, String const& text) {
    json << u"\"";
    for (std::size_t i = 0; i < text.Len(); ++i) {
        CodeUnit const unit = IsHalf(text, i) ? replacement : text[i];
        if (unit < 0x20) {
            json << u"\\u" << leadzero << hex(4) << static_cast<unsigned int>(unit);
            continue;
        }
        if (unit == u'"' || unit == u'\\')
            json << u"\\";
        json << unit;
    }
    json << u"\"";
}

} // namespace QMT
