// Decoding of escapes, and the readers of tables.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "qmt/html/html_text.h"
#include "qmt/html/native_strings.h"
#include "support/memory_medium.h"

namespace QMT {

namespace {

void Require(bool holds) {
    if (!holds)
        std::abort();
}

// The rule as it is told, which takes the text apart anew for each escape.
String PlainlyDecoded(String text) {
    bool decoded = false;
    std::size_t position = 0;
    for (int i; (i = text.Find(u"%", position)) != -1 && i != static_cast<int>(text.Len()) - 1;) {
        auto const at = static_cast<std::size_t>(i);
        position = at + 1;
        if (text[at + 1] == u'"')
            continue;
        decoded = true;
        CodeUnit const unit[] = {static_cast<CodeUnit>(16 * HexVal(text[at + 1]) + HexVal(text[at + 2])), 0};
        text = text.Left(at) + unit + text.Mid(at + 3);
    }
    std::string bytes;
    for (CodeUnit const unit : text.View())
        bytes += static_cast<char>(unit);
    return decoded ? DecodeFromUTF8(bytes.c_str(), false) : text;
}

// The table in use outlives the input.
void ReadTables(std::string const& content) {
    static Map<String, String> table;
    table.RemoveAll();
    MemoryMedium medium;
    medium.files[u"table"] = content;
    ReadNativeStrings(u"table", table, &medium);
    for (std::size_t i = 0; i < table.Size(); ++i)
        Require(NATIVE(table.Key(i)) == table.Value(i));
    std::size_t const size = table.Size();
    std::unique_ptr<ErrorInfo> const error(ReadPoNativeStrings(u"table", table, &medium));
    Require(!error || table.Size() == size);
}

} // namespace

} // namespace QMT

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const content(data, data + size);
    QMT::String const text = QMT::DecodeFromUTF8(content.c_str(), false);
    QMT::Require(QMT::HtmlDecode(text) == QMT::PlainlyDecoded(text));
    QMT::String url = text;
    QMT::UrlDecode(url);
    QMT::ReadTables(content);
    return 0;
}
