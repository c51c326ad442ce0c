#include "time/time_text.h"

#include <cstddef>
#include <memory>

#include "qmt/general/errors.h"
#include "qmt/time/portable_time.h"

namespace QMT {

namespace {

// Where the fields stand in a text, and how long it is when it holds so many of them.
struct TextForm {
    CalendarNumbers positions;
    std::size_t leastForDate;
    std::size_t leastForMinute;
    std::size_t exactForSecond;
};

constexpr TextForm compactForm{{0, 4, 6, 8, 10, 12}, 8, 12, 14};
constexpr TextForm readableForm{{0, 5, 8, 11, 14, 17}, 10, 16, 19};

std::size_t FieldsReached(TextForm const& form, std::size_t length) {
    if (length == form.exactForSecond)
        return 6;
    if (length >= form.leastForMinute)
        return 5;
    return length >= form.leastForDate ? 3 : 0;
}

// Leaves `field` as it is when `digits` is no number.
void ReadField(String const& digits, unsigned int& field) {
    try {
        unsigned int number = 0;
        digits >> number;
        field = number;
    } catch (ErrorInfo* error) {
        std::unique_ptr<ErrorInfo> const swallowed(error);
    }
}

CalendarNumbers ReadFields(String const& text, TextForm const& form, std::size_t count) {
    CalendarNumbers fields{2000, 1, 1, 0, 0, 0};
    for (std::size_t i = 0; i < count; ++i)
        ReadField(text.Mid(form.positions[i], i == 0 ? 4 : 2), fields[i]);
    return fields;
}

void AppendField(String& text, char16_t const* separator, bool readable, int field) {
    if (readable)
        text << separator;
    text << leadzero << width(2) << field;
}

} // namespace

CalendarNumbers ReadTime(String const& text) {
    TextForm const& form = text.Find(u"/", 0) < 0 ? compactForm : readableForm;
    return ReadFields(text, form, FieldsReached(form, text.Len()));
}

CalendarNumbers ReadDate(String const& date) {
    return ReadFields(date, readableForm, date.Len() == readableForm.leastForDate ? 3 : 0);
}

String PortableTime::YMD(bool readable) const {
    String text;
    text << GetYear();
    AppendField(text, u"/", readable, GetMonth());
    AppendField(text, u"/", readable, GetDay());
    return text;
}

String PortableTime::YMDHM(bool readable) const {
    String text = YMD(readable);
    AppendField(text, u" ", readable, GetHour());
    AppendField(text, u":", readable, GetMinute());
    return text;
}

String PortableTime::YMDHMS(bool readable) const {
    String text = YMDHM(readable);
    AppendField(text, u":", readable, GetSecond());
    return text;
}

} // namespace QMT
