#include "platform/code_pages.h"

#include <array>
#include <bit>
#include <cerrno>
#include <iconv.h>
#include <langinfo.h>

#include "platform/user_locale_posix.h"

namespace QMT::platform {

namespace {

constexpr char const* textEncoding = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

constexpr std::string_view replacementInText =
    std::endian::native == std::endian::little ? "\xFD\xFF" : "\xFF\xFD";
constexpr std::string_view questionMark =
    std::endian::native == std::endian::little ? std::string_view("?\0", 2) : std::string_view("\0?", 2);

// The converter's name of a code page. Those that are not listed bear their number.
std::string EncodingName(unsigned int codePage) {
    constexpr struct {
        unsigned int codePage;
        char const* name;
    } others[] = {{936, "GBK"},           {949, "UHC"},       {950, "BIG5"},         {20127, "ASCII"},
                  {20866, "KOI8-R"},      {21866, "KOI8-U"},  {28591, "ISO-8859-1"}, {28592, "ISO-8859-2"},
                  {28605, "ISO-8859-15"}, {54936, "GB18030"}, {65001, "UTF-8"}};

    if (codePage == 0) {
        UserLocale const locale(LC_CTYPE_MASK);
        return locale.Text(CODESET);
    }
    for (auto const& other : others) {
        if (other.codePage == codePage) {
            return other.name;
        }
    }
    return "CP" + std::to_string(codePage);
}

// A converter between two encodings, for one text.
class Converter {
public:
    Converter(std::string const& to, std::string const& from)
        : handle(::iconv_open(to.c_str(), from.c_str())) {}

    Converter(Converter const&) = delete;
    Converter& operator=(Converter const&) = delete;

    ~Converter() {
        if (IsKnown()) {
            ::iconv_close(handle);
        }
    }

    bool IsKnown() const { return reinterpret_cast<std::intptr_t>(handle) != -1; }

    // Adds the converted text to result, and lets replace(result) stand in for each step bytes of it that
    // cannot be converted.
    template <class Replace>
    void Convert(std::string_view source, std::size_t step, std::string& result, Replace replace) {
        while (!Feed(source, result)) {
            Finish(result); // what was held back stands in front of the replacement
            replace(result);
            source.remove_prefix(std::min(step, source.size()));
        }
        Finish(result);
    }

    // Converts as far as that goes; true when nothing is left.
    bool Feed(std::string_view& source, std::string& result) {
        auto* from = const_cast<char*>(source.data()); // which the converter does not write to
        std::size_t left = source.size();
        bool const isWhole = Run(&from, &left, result);
        source.remove_prefix(source.size() - left);
        return isWhole;
    }

    // Gives what is held back, and begins anew.
    void Finish(std::string& result) { Run(nullptr, nullptr, result); }

private:
    bool Run(char** from, std::size_t* left, std::string& result) {
        std::array<char, 1024> room;
        bool isFull = true;
        bool isWhole = false;
        while (isFull) {
            char* to = room.data();
            std::size_t roomLeft = room.size();
            isWhole = ::iconv(handle, from, left, &to, &roomLeft) != static_cast<std::size_t>(-1);
            isFull = !isWhole && errno == E2BIG;
            result.append(room.data(), room.size() - roomLeft);
        }
        return isWhole;
    }

    ::iconv_t handle;
};

} // namespace

bool ToCodePage(unsigned int codePage, std::basic_string_view<CodeUnit> text, std::string& bytes) {
    Converter converter(EncodingName(codePage), textEncoding);
    if (!converter.IsKnown()) {
        return false;
    }
    std::string_view const source(reinterpret_cast<char const*>(text.data()), text.size() * sizeof(CodeUnit));
    bytes.clear();
    converter.Convert(source, sizeof(CodeUnit), bytes, [&converter](std::string& result) {
        std::string_view mark = questionMark;
        converter.Feed(mark, result);
    });
    return true;
}

bool FromCodePage(unsigned int codePage, std::string_view bytes, std::basic_string<CodeUnit>& text) {
    Converter converter(textEncoding, EncodingName(codePage));
    if (!converter.IsKnown()) {
        return false;
    }
    std::string units;
    converter.Convert(bytes, 1, units, [](std::string& result) { result += replacementInText; });
    text.resize(units.size() / sizeof(CodeUnit));
    units.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(CodeUnit));
    return true;
}

} // namespace QMT::platform
