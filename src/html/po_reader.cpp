#include "html/po_reader.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "html/page_text.h"

namespace QMT {

namespace {

// The fields of an entry. Plural are those whose text is read over: the plural's key and its further forms.
enum class Field { None, Context, Key, Plural, Value };

// Appends what the escape "\" with this unit stands for; false when it is none that is known.
bool AppendEscape(String& text, CodeUnit unit) {
    constexpr std::pair<char16_t, char16_t> characters[] = {{u't', u'\t'},  {u'r', u'\r'}, {u'"', u'"'},
                                                            {u'\\', u'\\'}, {u'a', u'\a'}, {u'b', u'\b'},
                                                            {u'f', u'\f'},  {u'v', u'\v'}};
    if (unit == u'n') {
        text << newline;
        return true;
    }
    auto const known = std::ranges::find(characters, unit, [](auto const& pair) { return pair.first; });
    if (known == std::end(characters)) {
        return false;
    }
    text << CodeUnit{known->second};
    return true;
}

// Appends a string in double quotes that fills the whole of quoted; otherwise gives what is wrong with it.
char16_t const* AppendQuoted(String& text, TextView quoted) {
    if (quoted.size() < 2 || quoted.front() != u'"' || quoted.back() != u'"') {
        return u"no string in double quotes";
    }
    quoted = quoted.substr(1, quoted.size() - 2);
    for (std::size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == u'"') {
            return u"a double quote inside a string";
        }
        if (quoted[i] != u'\\') {
            text << quoted[i];
        } else if (++i == quoted.size() || !AppendEscape(text, quoted[i])) {
            return u"an unknown escape";
        }
    }
    return nullptr;
}

// True for the charsets that reading as UTF-8 suits, and for the word that stands for none in a template.
bool IsReadable(TextView charset) {
    constexpr TextView suitable[] = {u"utf-8"_view, u"utf8"_view, u"us-ascii"_view, u"ascii"_view,
                                     u"charset"_view};
    TextBuffer lower(charset);
    for (CodeUnit& unit : lower) {
        unit = static_cast<CodeUnit>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
    }
    return std::ranges::find(suitable, TextView(lower)) != std::end(suitable);
}

// Puts the lines of a file together to entries.
class PoReader {
public:
    explicit PoReader(TableEntries& target) : entries(target) {}

    // Takes the next line; gives what is wrong with it, or null.
    char16_t const* TakeLine(TextView line) {
        line = Trimmed(line);
        if (line.empty()) {
            return nullptr;
        }
        if (line.front() == u'#') {
            return TakeComment(line);
        }
        if (line.front() != u'"') {
            return TakeKeyword(line);
        }
        return field == Field::None ? u"a string without a keyword" : AppendQuoted(CurrentText(), line);
    }

    // Takes the end of the file, or of the entry where the next one begins.
    char16_t const* FinishEntry() {
        if (field == Field::None) {
            return nullptr;
        }
        if (!hasValue) {
            return u"the entry before has no msgstr";
        }
        if (key.IsEmpty() && context.IsEmpty()) {
            if (char16_t const* const fault = CheckHeader()) {
                return fault;
            }
        } else if (!isFuzzy && !key.IsEmpty() && !value.IsEmpty()) {
            entries.Add(key, value);
        }
        BeginEntry();
        return nullptr;
    }

private:
    void BeginEntry() {
        field = Field::None;
        hasValue = false;
        isFuzzy = false;
        key.SetEmpty();
        value.SetEmpty();
        context.SetEmpty();
    }

    // A comment belongs to the entry behind it; only its flags matter. What "#~" hides is an obsolete entry,
    // and takes the flags in front of it with it.
    char16_t const* TakeComment(TextView line) {
        if (hasValue) {
            if (char16_t const* const fault = FinishEntry()) {
                return fault;
            }
        }
        if (line.starts_with(u"#,"_view) && Holds(line, u"fuzzy"_view)) {
            isFuzzy = true;
        } else if (line.starts_with(u"#~"_view)) {
            isFuzzy = false;
        }
        return nullptr;
    }

    char16_t const* TakeKeyword(TextView line) {
        constexpr TextView contextWord = u"msgctxt"_view;
        constexpr TextView keyWord = u"msgid"_view;
        constexpr TextView pluralWord = u"msgid_plural"_view;
        constexpr TextView valueWord = u"msgstr"_view;
        constexpr TextView firstFormWord = u"msgstr[0]"_view;
        std::size_t const end = std::min(line.find_first_of(u" \t\""_view), line.size());
        TextView const word = line.substr(0, end);
        TextView const quoted = Trimmed(line.substr(end));
        if (word == contextWord) {
            return BeginField(Field::Context, quoted, true);
        }
        if (word == keyWord) {
            return BeginField(Field::Key, quoted, field != Field::Context);
        }
        if (field == Field::None || field == Field::Context) {
            return u"msgid is missing";
        }
        if (word == valueWord || word == firstFormWord) {
            return hasValue ? u"a second msgstr" : BeginField(Field::Value, quoted, false);
        }
        if (word == pluralWord || word.starts_with(u"msgstr["_view)) {
            return BeginField(Field::Plural, quoted, false);
        }
        return u"an unknown keyword";
    }

    char16_t const* BeginField(Field begun, TextView quoted, bool beginsEntry) {
        if (beginsEntry) {
            if (char16_t const* const fault = FinishEntry()) {
                return fault;
            }
        }
        field = begun;
        hasValue = hasValue || begun == Field::Value;
        readOver.SetEmpty();
        return AppendQuoted(CurrentText(), quoted);
    }

    String& CurrentText() {
        switch (field) {
        case Field::Context:
            return context;
        case Field::Key:
            return key;
        case Field::Value:
            return value;
        default:
            return readOver;
        }
    }

    // The header is the value of the empty key.
    char16_t const* CheckHeader() const {
        constexpr TextView charsetMarker = u"charset="_view;
        TextView const header = value.View();
        std::size_t const place = header.find(charsetMarker);
        if (place == nowhere) {
            return nullptr;
        }
        TextView const rest = header.substr(place + charsetMarker.size());
        TextView const charset = rest.substr(0, rest.find_first_of(u" \t\r\n;"_view));
        return IsReadable(charset) ? nullptr : u"the header in front declares another charset than UTF-8";
    }

    TableEntries& entries;
    Field field = Field::None;
    bool hasValue = false;
    bool isFuzzy = false;
    String context;
    String key;
    String value;
    String readOver;
};

ErrorInfo* FaultAt(String const& path, int lineNumber, String const& line, char16_t const* fault) {
    String message;
    message << u"Can't read native strings from " << path << u", line " << lineNumber << u": "
            << String(fault) << u": " << line;
    return MakeError(message);
}

} // namespace

ErrorInfo* ReadPoFile(String path, FileMedium* medium, TableEntries& entries) {
    LineParsableFile file(path, medium);
    if (std::unique_ptr<ErrorInfo> error{file.Open()}) {
        return error.release();
    }
    PoReader reader(entries);
    ErrorInfo* error = nullptr;
    String line;
    int lineNumber = 0;
    while (file.NextLine(line, error, 0) != 0) {
        ++lineNumber;
        if (char16_t const* const fault = reader.TakeLine(line.View())) {
            return FaultAt(path, lineNumber, line, fault);
        }
    }
    if (error) {
        return error;
    }
    char16_t const* const fault = reader.FinishEntry();
    return fault ? FaultAt(path, lineNumber, String(u"the file's end"), fault) : nullptr;
}

} // namespace QMT
