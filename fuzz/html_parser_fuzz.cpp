// All jobs on a page: none fails, and each agrees with the plain rules.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "html/reference_parser.h"
#include "qmt/html/html_parser.h"

namespace QMT {

namespace {

void Require(bool holds) {
    if (!holds)
        std::abort();
}

// A value for every second text, which may itself be made of markers.
Map<String, String> TableOf(VArray<String, String> const& strings, String const& value) {
    Map<String, String> table;
    for (std::size_t i = 0; i < strings.Size(); i += 2)
        table.Insert(strings[i], value);
    return table;
}

void RunJobs(String const& page, bool parseHead, int width) {
    HtmlParser parser(page);
    ReferenceParser reference(page);
    Require(parser.GetAlteredHtml() == reference.html);
    VArray<String, String> strings, expected;
    NonSortableVArray<String> inOrder;
    parser.SetUnsortedExtraction(&inOrder);
    parser.ExtractNativeStrings(strings, parseHead);
    reference.Extract(expected, parseHead);
    Require(strings.Size() == expected.Size() && inOrder.Size() == reference.found.size());
    for (std::size_t i = 0; i < strings.Size(); ++i)
        Require(strings[i] == expected[i] && inOrder[i] == reference.found[i]);
    Map<String, String> const table = TableOf(strings, page.Left(static_cast<std::size_t>(width)));
    CheckNativeCoverage(page, table, parseHead);
    parser.SubstituteNativeStrings(table, parseHead);
    reference.Substitute(table, parseHead);
    Require(parser.GetAlteredHtml() == reference.html);
    parser.FormatForCharactersWidth(width);
    reference.Format(width);
    Require(parser.GetAlteredHtml() == reference.html);
}

} // namespace

} // namespace QMT

// The first byte chooses the head mode and the width; the page follows.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0)
        return 0;
    std::string const page(data + 1, data + size);
    QMT::RunJobs(QMT::DecodeFromUTF8(page.c_str(), false), data[0] % 2 == 1, data[0] / 2);
    return 0;
}
